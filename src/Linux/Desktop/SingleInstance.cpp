// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/SingleInstance.h"

#include "Platform/Posix.h"

#include <QLocalServer>
#include <QLocalSocket>
#include <QString>
#include <QUrl>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <thread>
#include <utility>

namespace tovik {

namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr auto kRetryInterval = std::chrono::milliseconds(10);
constexpr char kComeForward = 'p';
constexpr char kDone = 'd';
/// Those who connect and say nothing are let go when so many have come after them.
constexpr int kMostCallers = 16;

/// Safe as a part of a file name, and another one for another display.
std::string fileNameFor(const std::string& display) {
    const auto name = QUrl::toPercentEncoding(QString::fromStdString(display)).toStdString();
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

/// By way of the folder's descriptor: a folder that somebody puts in its place afterwards does not count, and
/// the path of a socket must be short.
std::string pathIn(const UnixFd& folder, const std::string& name) {
    return "/proc/self/fd/" + std::to_string(folder.get()) + "/" + name;
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
                              "Another copy of Tovik Record is running on this desktop and does not answer");
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

QString SingleInstance::socketPath() const {
    return QString::fromStdString(pathIn(folderFd_, name_ + ".socket"));
}

Result<void> SingleInstance::listen() {
    // Left behind by a copy that was killed: the lock says that nobody listens there.
    QLocalServer::removeServer(socketPath());
    server_ = std::make_unique<QLocalServer>();
    server_->setSocketOptions(QLocalServer::UserAccessOption);
    if (!server_->listen(socketPath())) {
        return Error{"QLocalServer", server_->serverError(),
                     "Cannot listen in " + folder_ + ": " + server_->errorString().toStdString()};
    }
    return {};
}

SingleInstance::Answer SingleInstance::askFirst() const {
    const auto patience =
        static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(patience_).count());
    QLocalSocket socket;
    socket.connectToServer(socketPath());
    if (!socket.waitForConnected(patience) || socket.write(&kComeForward, 1) != 1) {
        return Answer::nobodyThere;
    }
    char answer = 0;
    if (socket.waitForReadyRead(patience) && socket.getChar(&answer) && answer == kDone) {
        return Answer::cameForward;
    }
    return socket.state() == QLocalSocket::ConnectedState ? Answer::silence : Answer::nobodyThere;
}

void SingleInstance::onRequest(std::function<void()> handler) {
    const auto hear = [this, handler = std::move(handler)] {
        while (auto* const caller = server_->nextPendingConnection()) {
            hearOut(*caller, handler);
        }
        const auto callers = server_->findChildren<QLocalSocket*>();
        for (int extra = 0; extra < callers.size() - kMostCallers; ++extra) {
            callers[extra]->deleteLater();
        }
    };
    QObject::connect(server_.get(), &QLocalServer::newConnection, server_.get(), hear);
    hear();
}

void SingleInstance::hearOut(QLocalSocket& caller, const std::function<void()>& handler) {
    const auto answer = [&caller, handler] {
        char request = 0;
        if (caller.getChar(&request) && request == kComeForward) {
            handler();
            caller.putChar(kDone);
            caller.flush();
        }
        caller.disconnectFromServer();
    };
    QObject::connect(&caller, &QLocalSocket::readyRead, &caller, answer);
    QObject::connect(&caller, &QLocalSocket::disconnected, &caller, &QObject::deleteLater);
    // Who came before anybody listened may have spoken already.
    if (caller.bytesAvailable() > 0) {
        answer();
    }
}

void SingleInstance::release() {
    server_.reset();
    lock_.reset();
}

} // namespace tovik
