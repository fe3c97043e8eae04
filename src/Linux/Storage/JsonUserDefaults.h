// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/Storage/JsonFile.h"
#include "Platform/MainQueue.h"
#include "Platform/SystemLog.h"
#include "Platform/UserDefaults.h"

#include <functional>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>

namespace tovik {

class SettingsView;

/// Settings in one JSON object in a file that only the user can read, shared with other processes.
///
/// A change that cannot be saved is logged, holds for this process all the same and is saved by saveAgain()
/// or together with the next change that can; unless another process has changed the same key meanwhile,
/// whose edit is then the newer one. Content that is no JSON object counts as empty and is kept beside the
/// file as "<name>.unreadable-<its time>", the first such copy and the last few; as long as that fails
/// nothing is written over it.
class JsonUserDefaults : public UserDefaults {
public:
    /// The log must outlive the settings. onUnsaved is called on the main thread after each write that
    /// failed: whoever has a clock may then call saveAgain() after a while.
    JsonUserDefaults(std::string path, SystemLog& log, std::function<void()> onUnsaved = nullptr);
    /// Tries to save what is unsaved a last time, and tells when that fails.
    ~JsonUserDefaults() override;
    JsonUserDefaults(const JsonUserDefaults&) = delete;
    JsonUserDefaults& operator=(const JsonUserDefaults&) = delete;

    [[nodiscard]] std::optional<PropertyValue> value(std::string_view key) const override;
    void set(std::string_view key, PropertyValue value) override;
    void remove(std::string_view key) override;
    [[nodiscard]] bool isSaved(std::string_view key) const override;

    /// Tries to save the changes that could not be saved, and waits so long for another process that is
    /// writing. Whether there are none any more. Says so when they have been, and is silent when it fails.
    /// Main thread.
    bool saveAgain(Seconds patience = Seconds(0));

private:
    [[nodiscard]] std::shared_ptr<const JsonDocument> newest() const;
    void change(std::string_view key, const JsonDocument::Value& value);
    /// With the change put first; waits so long for another process that is writing.
    [[nodiscard]] Result<void> save(const std::function<void()>& change, Seconds patience);
    [[nodiscard]] bool hasUnsaved() const;
    [[nodiscard]] Result<void> prepareFolder() const;
    void complain(const std::string& complaint) const;

    const std::string path_;
    SystemLog& log_;
    const std::function<void()> onUnsaved_;
    std::mutex writing_;
    mutable std::mutex viewing_;
    /// Guarded by viewing_.
    const std::unique_ptr<SettingsView> view_;
};

} // namespace tovik
