// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/Storage/SettingsView.h"
#include "Platform/SystemLog.h"
#include "Platform/UserDefaults.h"

#include <memory>
#include <mutex>
#include <string>

namespace tovik {

/// Settings in one JSON object in a file that only the user can read, shared with other processes.
///
/// A change that cannot be saved is logged, holds for this process all the same and is saved together with
/// the next change that can; unless another process has changed the same key meanwhile, whose edit is then
/// the newer one. Content that is no JSON object counts as empty and is kept beside the file as
/// "<name>.unreadable-<its time>"; as long as that fails nothing is written over it.
class JsonUserDefaults : public UserDefaults {
public:
    /// The log must outlive the settings.
    JsonUserDefaults(std::string path, SystemLog& log);

    [[nodiscard]] std::optional<PropertyValue> value(std::string_view key) const override;
    void set(std::string_view key, PropertyValue value) override;
    void remove(std::string_view key) override;

private:
    [[nodiscard]] std::shared_ptr<const JsonDocument> newest() const;
    void change(std::string_view key, const JsonDocument::Value& value);
    [[nodiscard]] Result<void> save(std::string_view key, const JsonDocument::Value& value);
    [[nodiscard]] Result<void> prepareFolder() const;
    void complain(const std::string& complaint) const;

    const std::string path_;
    SystemLog& log_;
    std::mutex writing_;
    mutable std::mutex viewing_;
    mutable SettingsView view_;
};

} // namespace tovik
