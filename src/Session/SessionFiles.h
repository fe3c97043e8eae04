// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Files.h"
#include "Platform/MainQueue.h"
#include "Platform/SystemLog.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tovik {

/// The file by which other programs of this machine see that a recording runs. It exists only meanwhile; one
/// left by a process that ended is told by its "pid". Main thread.
class CaptureStateFile {
public:
    /// dataFolder: where programs of this user keep their data.
    CaptureStateFile(Files& files, const Clock& clock, SystemLog& log, const std::string& dataFolder,
                     std::int64_t processIdentifier);

    [[nodiscard]] const std::string& tovikCaptureStateURL() const { return path_; }

    /// Writes the file, or removes it when no recording is active. startedAt is the beginning of the
    /// recording; without it the present counts. A failure is logged and changes nothing else.
    void writeTovikCaptureState(bool active, std::optional<Date> startedAt = std::nullopt);

private:
    void logFailure(const Error& error);

    Files& files_;
    const Clock& clock_;
    SystemLog& log_;
    std::string folder_;
    std::string path_;
    std::int64_t processIdentifier_;
};

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
