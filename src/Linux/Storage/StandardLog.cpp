// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Storage/StandardLog.h"

#include <locale.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>

namespace tovik {

namespace {

/// Facility user, severity notice.
constexpr auto kSyslogPriority = "<13>";
// A terminal that scrolls needs less; whoever holds the output with Ctrl+S must not hold the program.
constexpr int kPatienceMilliseconds = 100;

bool isWritable(int fd, int milliseconds) {
    pollfd writable{fd, POLLOUT, 0};
    int ready = 0;
    do {
        ready = ::poll(&writable, 1, milliseconds);
    } while (ready < 0 && errno == EINTR);
    return ready > 0;
}

/// Gives what was not taken. Pieces of this size never block where poll() has said that there is room.
std::string_view writeAll(int fd, std::string_view rest, int milliseconds) {
    while (!rest.empty() && isWritable(fd, milliseconds)) {
        const auto written = ::write(fd, rest.data(), std::min<std::size_t>(rest.size(), PIPE_BUF));
        if (written > 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
        } else if (written < 0 && errno != EINTR && errno != EAGAIN) {
            // Nobody will ever read this; that is no stall.
            return {};
        }
    }
    return rest;
}

/// As the log service wants it, whatever the user's language is: Nov  1 14:05:09.
std::string timestamp() {
    static const locale_t plain = ::newlocale(LC_TIME_MASK, "C", nullptr);
    const auto now = ::time(nullptr);
    tm local{};
    ::localtime_r(&now, &local);
    std::array<char, 64> text{};
    return {text.data(), ::strftime_l(text.data(), text.size(), "%b %e %H:%M:%S", &local, plain)};
}

sockaddr_un addressOf(const std::string& socketPath) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    socketPath.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

} // namespace

StandardLog::StandardLog() : StandardLog(STDOUT_FILENO, STDERR_FILENO, "/dev/log") {}

StandardLog::StandardLog(int outputFd, int errorFd, const std::string& syslogSocket)
    : syslogAddress_(addressOf(syslogSocket)),
      syslog_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)),
      copiesToError_(::isatty(errorFd) == 1),
      output_{outputFd},
      errors_{errorFd} {
    ::signal(SIGPIPE, SIG_IGN);
}

void StandardLog::writeLine(Output& output, std::string_view line) {
    // The wait is paid once, not for every line.
    if (output.leftOut > 0 && !isWritable(output.fd, 0)) {
        ++output.leftOut;
        return;
    }
    std::string text = output.brokeOff ? "\n" : "";
    if (output.leftOut > 0) {
        text += "[TovikVoice] " + std::to_string(output.leftOut) + " lines are missing here\n";
    }
    text += line;
    text += '\n';
    const auto rest = writeAll(output.fd, text, kPatienceMilliseconds);
    output.leftOut = rest.empty() ? 0 : output.leftOut + 1;
    output.brokeOff = !rest.empty() && (rest.size() < text.size() || output.brokeOff);
}

void StandardLog::printLine(std::string_view line) {
    const std::lock_guard lock(mutex_);
    writeLine(output_, line);
}

void StandardLog::logLine(std::string_view line) {
    const std::lock_guard lock(mutex_);
    if (!sendToSyslog(line) || copiesToError_) {
        writeLine(errors_, line);
    }
}

bool StandardLog::sendToSyslog(std::string_view line) const {
    auto message = kSyslogPriority + timestamp() + " tovik-record[" + std::to_string(::getpid()) +
                   "]: " + std::string(line);
    // Everything after a NUL would be missing in the log.
    std::replace(message.begin(), message.end(), '\0', ' ');
    // A log service that hangs must not hang this program. Without a connection to it, one that was started
    // again is found again.
    return ::sendto(syslog_.get(), message.data(), message.size(), MSG_NOSIGNAL | MSG_DONTWAIT,
                    reinterpret_cast<const sockaddr*>(&syslogAddress_), sizeof syslogAddress_) >= 0;
}

} // namespace tovik
