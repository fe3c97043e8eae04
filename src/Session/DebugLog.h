// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Clock.h"
#include "Platform/Files.h"
#include "Platform/SystemLog.h"

#include <string>
#include <string_view>

namespace tovik {

/// A trace of the launch in a file that only grows, for the day on which a launch goes wrong.
class DebugLog {
public:
    /// The folder of the file is made when it is missing.
    DebugLog(Files& files, const Clock& clock, SystemLog& log, std::string path);

    /// Every failure to write the file is silent; the system log has the line all the same, and the file gets
    /// it with the next line that can be written.
    void debugLog(std::string_view message);

private:
    [[nodiscard]] bool createFile();

    Files& files_;
    const Clock& clock_;
    SystemLog& log_;
    std::string path_;
    /// What the file lacks so far.
    std::string unwritten_;
};

} // namespace tovik
