// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace tovik {

/// Where the user's files lie, by the XDG base directory rules. Nothing here touches the disk.
///
/// QStandardPaths (Qt 6.4) knows no state folder, goes by relative values too, takes "/" for the home where
/// HOME is missing, and makes the runtime folder when asked for it.
class XdgFolders {
public:
    using Environment = std::function<std::optional<std::string>(const char* variable)>;

    /// The environment of this process; the account's home where HOME is missing.
    XdgFolders();
    explicit XdgFolders(const Environment& environment);

    /// None of them ends in a slash.
    [[nodiscard]] const std::string& home() const { return home_; }
    /// Data of all programs: what other systems call Application Support.
    [[nodiscard]] const std::string& applicationSupport() const { return data_; }
    /// For sockets and locks, gone with the session. It may be one that has yet to be made; whoever uses it
    /// checks that it belongs to the user.
    [[nodiscard]] const std::string& runtime() const { return runtime_; }

    [[nodiscard]] std::string defaultsFile() const { return config_ + "/tovik-record/defaults.json"; }
    [[nodiscard]] std::string debugLogFile() const { return state_ + "/tovik-record/tovik_record_debug.log"; }

private:
    std::string home_;
    std::string config_;
    std::string data_;
    std::string state_;
    std::string runtime_;
};

} // namespace tovik
