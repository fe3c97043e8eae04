// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/SingleInstance.h"

#include "Platform/Posix.h"

#include <QSocketNotifier>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <utility>

namespace tovik {

namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr auto kRetryInterval = std::chrono::milliseconds(10);
constexpr char kComeForward = 'p';
constexpr char kDone = 'd';
constexpr int kBacklog = 16;

/// Safe as a part of a file name, and another one for another display.
std::string fileNameFor(const std::string& display) {
    std::string name;
    for (const char byte : display) {
        const bool isPlain = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
                             (byte >= '0' && byte <= '9') || byte == '-' || byte == '.';
        if (isPlain) {
            name += byte;
        } else {
            name += "_" + std::to_string(static_cast<unsigned char>(byte));
        }
    }
    return "tovik-record-" + (name.empty() ? "none" : name);
}

/// ":0.1" is another screen of the same display ":0".
std::string withoutScreen(const std::string& display) {
    const auto colon = display.rfind(':');
    const auto dot = display.rfind('.');
    const bool namesScreen = colon != std::string::npos && dot != std::string::npos && dot > colon;
    return namesScreen ? display.substr(0, dot) : display;
}

std::string variable(const char* name) {
    const auto* value = std::getenv(name);
    return value ? value : "";
}

/// By way of the folder's descriptor: a folder that somebody puts in its place afterwards does not count.
std::string pathIn(const UnixFd& folder, const std::string& name) {
    return "/proc/self/fd/" + std::to_string(folder.get()) + "/" + name;
}

/// The path of a socket must be short.
sockaddr_un addressIn(const UnixFd& folder, const std::string& name) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const auto path = pathIn(folder, name);
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

/// Waits for one byte; nothing when the other side is gone or the time is over.
std::optional<char> receive(int fd, std::chrono::milliseconds patience, bool& isGone) {
    pollfd readable{fd, POLLIN, 0};
    if (::poll(&readable, 1, static_cast<int>(patience.count())) <= 0) {
        return std::nullopt;
    }
    char byte = 0;
    const auto got = ::recv(fd, &byte, 1, MSG_DONTWAIT);
    isGone = got <= 0;
    return got == 1 ? std::optional(byte) : std::nullopt;
}

bool isSameUser(int fd) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == ::geteuid();
}

} // namespace

SingleInstance::SingleInstance(std::string folder, const std::string& display, Seconds patience)
    : folder_(std::move(folder)),
      name_(fileNameFor(withoutScreen(display))),
      patience_(patience) {}

SingleInstance::~SingleInstance() {
    release();
}

std::string SingleInstance::currentDisplay() {
    const auto x = variable("DISPLAY");
    return x.empty() ? variable("WAYLAND_DISPLAY") : x;
}

Result<SingleInstance::Role> SingleInstance::claim() {
    if (auto prepared = prepareFolder(); !prepared) {
        return prepared.error();
    }
    const auto deadline = SteadyClock::now() + patience_;
    while (true) {
        auto lock = FileLock::acquire(pathIn(folderFd_, name_ + ".lock"), Seconds(0));
        if (lock) {
            lock_ = std::move(lock.value());
            if (auto listening = listen(); !listening) {
                release();
                return listening.error();
            }
            return Role::first;
        }
        if (lock.error().code != EWOULDBLOCK) {
            return lock.error();
        }
        if (askFirst() == Answer::cameForward) {
            return Role::second;
        }
        // The other copy is still starting, or about to end.
        if (SteadyClock::now() >= deadline) {
            return posixError(ETIMEDOUT,
                              "Another copy of Tovik Record runs on this desktop and does not answer");
        }
        std::this_thread::sleep_for(kRetryInterval);
    }
}

Result<void> SingleInstance::prepareFolder() {
    if (auto created = createPrivateFolder(folder_); !created) {
        return created;
    }
    folderFd_ = UnixFd(::open(folder_.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!folderFd_ || ::fstat(folderFd_.get(), &status) != 0) {
        return posixError(errno, "Cannot use the folder " + folder_);
    }
    if (status.st_uid != ::geteuid()) {
        return posixError(EPERM, "The folder " + folder_ + " belongs to somebody else");
    }
    return {};
}

Result<void> SingleInstance::listen() {
    const auto attempt = "Cannot listen in " + folder_;
    const auto name = name_ + ".socket";
    // Left behind by a copy that was killed: the lock says that nobody listens there.
    ::unlinkat(folderFd_.get(), name.c_str(), 0);
    listener_ = UnixFd(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const auto address = addressIn(folderFd_, name);
    if (!listener_ ||
        ::bind(listener_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(listener_.get(), kBacklog) != 0) {
        return posixError(errno, attempt);
    }
    return {};
}

SingleInstance::Answer SingleInstance::askFirst() const {
    const UnixFd socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const auto address = addressIn(folderFd_, name_ + ".socket");
    if (!socket ||
        ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::send(socket.get(), &kComeForward, 1, MSG_NOSIGNAL) != 1) {
        return Answer::nobodyThere;
    }
    bool isGone = false;
    const auto answer =
        receive(socket.get(), std::chrono::duration_cast<std::chrono::milliseconds>(patience_), isGone);
    if (answer == kDone) {
        return Answer::cameForward;
    }
    return isGone ? Answer::nobodyThere : Answer::silence;
}

void SingleInstance::onRequest(std::function<void()> handler) {
    notifier_ = std::make_unique<QSocketNotifier>(listener_.get(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [this, handler = std::move(handler)] { answerRequests(handler); });
}

void SingleInstance::answerRequests(const std::function<void()>& handler) {
    while (true) {
        const UnixFd socket(::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
        if (!socket) {
            return;
        }
        bool isGone = false;
        // The request is sent together with the connection; whoever sends none does not hold us up.
        constexpr auto kAtOnce = std::chrono::milliseconds(50);
        if (isSameUser(socket.get()) && receive(socket.get(), kAtOnce, isGone) == kComeForward) {
            handler();
            (void)::send(socket.get(), &kDone, 1, MSG_NOSIGNAL | MSG_DONTWAIT);
        }
    }
}

void SingleInstance::release() {
    notifier_.reset();
    if (listener_) {
        ::unlinkat(folderFd_.get(), (name_ + ".socket").c_str(), 0);
        listener_.reset();
    }
    lock_.reset();
}

} // namespace tovik
