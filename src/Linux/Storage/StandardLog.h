// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Posix.h"
#include "Platform/SystemLog.h"

#include <sys/un.h>

#include <cstddef>
#include <mutex>
#include <string>

namespace tovik {

/// Lines on standard output and in the machine's syslog (user facility). A reader that went away or stopped
/// reading, a full log or a missing log service never stops the program: lines for a syslog that is not there
/// go to standard error instead, and so do copies of the others where that is a terminal. What a reader does
/// not take in time is left out, and how much that was is told when it reads again.
///
/// syslog(3) waits for a log service that hangs, and cannot tell whether one took the line.
class StandardLog : public SystemLog {
public:
    StandardLog();
    /// Borrows the descriptors. From now on the program ignores SIGPIPE: a reader that went away is no reason
    /// for it to end.
    StandardLog(int outputFd, int errorFd, const std::string& syslogSocket);

    void printLine(std::string_view line) override;
    void logLine(std::string_view line) override;

private:
    /// A descriptor for lines, and what became of them.
    struct Output {
        const int fd;
        /// What the reader has not taken: lines, of which the first may stand there in part.
        std::size_t leftOut = 0;
        bool brokeOff = false;
    };

    static void writeLine(Output& output, std::string_view line);
    [[nodiscard]] bool sendToSyslog(std::string_view line) const;

    const sockaddr_un syslogAddress_;
    const UnixFd syslog_;
    const bool copiesToError_;
    std::mutex mutex_;
    Output output_;
    Output errors_;
};

} // namespace tovik
