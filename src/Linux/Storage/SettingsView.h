// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/Storage/JsonFile.h"
#include "Platform/Result.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// What this process sees of the settings: what the file holds, with the changes on it that could not be
/// saved yet. A key that somebody else has changed in the file since is theirs. Not for several threads at
/// once.
class SettingsView {
public:
    explicit SettingsView(std::string path) : path_(path), file_(std::move(path)) {}

    /// Takes in what has changed on the disk. Unreadable content is kept beside the file.
    void refresh();

    /// The change holds from now on. Null removes the key.
    void put(std::string_view key, JsonDocument::Value value);

    /// Whether changes are still to be written: any, or those of a key.
    [[nodiscard]] bool hasUnsaved() const { return !unsaved_.empty(); }
    [[nodiscard]] bool hasUnsaved(std::string_view key) const { return unsaved_.contains(key); }

    /// The document with all changes on it has been written, as this text.
    void wasSaved(std::shared_ptr<const JsonDocument> document, std::string_view text);

    /// Never null.
    [[nodiscard]] const std::shared_ptr<const JsonDocument>& document() const { return visible_; }

    /// Fails as long as writing the file could lose what it holds.
    [[nodiscard]] Result<void> mayBeOverwritten();

    /// What the user should know, once.
    [[nodiscard]] std::vector<std::string> takeComplaints();

private:
    struct Unsaved {
        JsonDocument::Value value;
        /// What the file held when the change was made.
        JsonDocument::Value replaced;
    };

    void dropOvertaken();
    void layUnsavedOverFile();
    void keepUnreadableBytes();
    void complain(std::string complaint);

    const std::string path_;
    JsonFile file_;
    std::map<std::string, Unsaved, std::less<>> unsaved_;
    std::shared_ptr<const JsonDocument> visible_ = std::make_shared<JsonDocument>();
    Result<void> keeping_;
    std::vector<std::string> complaints_;
    std::string lastComplaint_;
};

} // namespace tovik
