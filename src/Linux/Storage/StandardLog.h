// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/Storage/UnixFd.h"
#include "Platform/SystemLog.h"

#include <mutex>
#include <string>

namespace tovik {

/// Lines on standard output and in the machine's syslog (user facility). A reader that went away, a full log
/// or a missing log service never stops the program: lines for a syslog that is not there go to standard
/// error instead, and so do copies of the others where that is a terminal.
class StandardLog : public SystemLog {
public:
    StandardLog();
    /// Borrows the descriptors.
    StandardLog(int outputFd, int errorFd, std::string syslogSocket);

    void printLine(std::string_view line) override;
    void logLine(std::string_view line) override;

private:
    [[nodiscard]] bool sendToSyslog(std::string_view line);

    const int outputFd_;
    const int errorFd_;
    const std::string syslogSocket_;
    const bool copiesToError_;
    std::mutex mutex_;
    UnixFd socket_;
};

} // namespace tovik
