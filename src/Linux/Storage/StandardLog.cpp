// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Storage/StandardLog.h"

#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>

namespace tovik {

namespace {

/// Facility user, severity notice.
constexpr auto kSyslogPriority = "<13>";
// A terminal that scrolls needs less; whoever holds the output with Ctrl+S must not hold the program.
constexpr int kPatienceMilliseconds = 100;

/// While it lives, writing to a pipe that nobody reads any more is an error in this thread, not the end of
/// the program.
class PipeSignalHeldBack {
public:
    PipeSignalHeldBack() {
        sigemptyset(&pipe_);
        sigaddset(&pipe_, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        wasPending_ = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &pipe_, &before_);
    }
    PipeSignalHeldBack(const PipeSignalHeldBack&) = delete;
    PipeSignalHeldBack& operator=(const PipeSignalHeldBack&) = delete;
    ~PipeSignalHeldBack() {
        if (!wasPending_) {
            const timespec atOnce{};
            while (sigtimedwait(&pipe_, nullptr, &atOnce) < 0 && errno == EINTR) {
            }
        }
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }

private:
    sigset_t pipe_{};
    sigset_t before_{};
    bool wasPending_ = false;
};

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
    static constexpr std::array<const char*, 12> kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const auto now = ::time(nullptr);
    tm local{};
    ::localtime_r(&now, &local);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%s %2d %02d:%02d:%02d",
                  kMonths.at(static_cast<std::size_t>(local.tm_mon)), local.tm_mday, local.tm_hour,
                  local.tm_min, local.tm_sec);
    return text.data();
}

UnixFd connectTo(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        return {};
    }
    std::memcpy(address.sun_path, path.data(), path.size());
    UnixFd socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (!socket ||
        ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        return {};
    }
    return socket;
}

} // namespace

StandardLog::StandardLog() : StandardLog(STDOUT_FILENO, STDERR_FILENO, "/dev/log") {}

StandardLog::StandardLog(int outputFd, int errorFd, std::string syslogSocket)
    : syslogSocket_(std::move(syslogSocket)),
      copiesToError_(::isatty(errorFd) == 1),
      output_{outputFd},
      errors_{errorFd} {}

void StandardLog::writeLine(Output& output, std::string_view line) {
    const PipeSignalHeldBack heldBack;
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

bool StandardLog::sendToSyslog(std::string_view line) {
    auto message = kSyslogPriority + timestamp() + " tovik-record[" + std::to_string(::getpid()) +
                   "]: " + std::string(line);
    // Everything after a NUL would be missing in the log.
    std::replace(message.begin(), message.end(), '\0', ' ');
    for (const bool isReconnected : {false, true}) {
        if (!socket_ || isReconnected) {
            socket_ = connectTo(syslogSocket_);
        }
        // A log service that hangs must not hang this program.
        if (socket_ &&
            ::send(socket_.get(), message.data(), message.size(), MSG_NOSIGNAL | MSG_DONTWAIT) >= 0) {
            return true;
        }
    }
    return false;
}

} // namespace tovik
