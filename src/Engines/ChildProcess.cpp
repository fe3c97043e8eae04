// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/ChildProcess.h"

#include "Platform/Posix.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

namespace tovik {

namespace {

/// As of a program that was killed: what it was doing was not finished for all we know.
constexpr int kStatusUnknown = SIGKILL;
constexpr int kFirstOtherFile = STDERR_FILENO + 1;

/// Its own group is the one that it ends, itself included. TERM is for the others.
constexpr auto kWatch = "trap '' TERM; read -r _; kill -s TERM 0; sleep 2; kill -s KILL 0";

class FileActions {
public:
    FileActions() { posix_spawn_file_actions_init(&actions_); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }

    void use(const UnixFd& file, int as, int mode) {
        if (file) {
            posix_spawn_file_actions_adddup2(&actions_, file.get(), as);
        } else {
            posix_spawn_file_actions_addopen(&actions_, as, "/dev/null", mode, 0);
        }
    }
    void closeOthers() { posix_spawn_file_actions_addclosefrom_np(&actions_, kFirstOtherFile); }
    [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_{};
};

/// The process group, and signals as every program expects them, whatever the calling thread has blocked.
class Attributes {
public:
    /// 0 for a group that the new process leads.
    explicit Attributes(pid_t group) {
        posix_spawnattr_init(&attributes_);
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&attributes_, &signals);
        sigfillset(&signals);
        posix_spawnattr_setsigdefault(&attributes_, &signals);
        posix_spawnattr_setpgroup(&attributes_, group);
        posix_spawnattr_setflags(&attributes_,
                                 POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
    }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    ~Attributes() { posix_spawnattr_destroy(&attributes_); }

    [[nodiscard]] const posix_spawnattr_t* get() const { return &attributes_; }

private:
    posix_spawnattr_t attributes_{};
};

std::string_view nameOf(std::string_view variable) {
    return variable.substr(0, variable.find('='));
}

std::vector<char*> environmentWith(std::vector<std::string>& changes) {
    std::vector<char*> variables;
    variables.reserve(changes.size());
    for (auto& change : changes) {
        variables.push_back(change.data());
    }
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const bool isReplaced = std::any_of(changes.begin(), changes.end(), [&](const auto& change) {
            return nameOf(change) == nameOf(*variable);
        });
        if (!isReplaced) {
            variables.push_back(*variable);
        }
    }
    variables.push_back(nullptr);
    return variables;
}

/// Above the standard ones, which the program's own take the places of.
UnixFd lifted(int fd) {
    return fd >= kFirstOtherFile ? UnixFd(fd)
                                 : (UnixFd(fd), UnixFd(::fcntl(fd, F_DUPFD_CLOEXEC, kFirstOtherFile)));
}

struct Ends {
    UnixFd ours;
    UnixFd theirs;
};

/// A socket where we write, since only that can be written without a signal when nobody reads any more.
Result<Ends> makeInput() {
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        return posixError(errno, "Cannot make a pipe");
    }
    Ends made{lifted(ends[0]), lifted(ends[1])};
    ::shutdown(made.ours.get(), SHUT_RD);
    return made;
}

Result<Ends> makeOutput() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        return posixError(errno, "Cannot make a pipe");
    }
    return Ends{lifted(ends[0]), lifted(ends[1])};
}

void stopBlocking(const UnixFd& fd) {
    ::fcntl(fd.get(), F_SETFL, ::fcntl(fd.get(), F_GETFL) | O_NONBLOCK);
}

bool isTransient(int error) {
    return error == EAGAIN || error == EINTR;
}

} // namespace

Result<std::unique_ptr<ChildProcess>> ChildProcess::start(Program program) {
    std::unique_ptr<ChildProcess> child(new ChildProcess);
    // First, so that there is no moment at which this process could die and leave the program behind.
    if (program.outlivesNothing) {
        child->startWatcher();
    }
    if (auto spawned = child->spawn(program); !spawned) {
        return spawned.error();
    }
    return child;
}

Result<void> ChildProcess::spawn(Program& program) {
    Ends input{UnixFd(), std::move(program.input)};
    Ends output;
    if (input.theirs) {
        // Our end of another program's output does not block; few programs expect that of their input.
        ::fcntl(input.theirs.get(), F_SETFL, ::fcntl(input.theirs.get(), F_GETFL) & ~O_NONBLOCK);
    }
    if (program.hasInput) {
        auto made = makeInput();
        if (!made) {
            return made.error();
        }
        input = std::move(made.value());
        stopBlocking(input.ours);
    }
    if (program.hasOutput) {
        auto made = makeOutput();
        if (!made) {
            return made.error();
        }
        output = std::move(made.value());
        stopBlocking(output.ours);
    }
    FileActions files;
    files.use(input.theirs, STDIN_FILENO, O_RDONLY);
    files.use(output.theirs, STDOUT_FILENO, O_WRONLY);
    files.use(UnixFd(), STDERR_FILENO, O_WRONLY);
    files.closeOthers();
    std::vector<char*> arguments;
    arguments.reserve(program.command.size() + 1);
    for (auto& argument : program.command) {
        arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);
    const auto environment = environmentWith(program.environment);
    const int code = ::posix_spawnp(&process_, arguments.front(), files.get(), Attributes(group_).get(),
                                    arguments.data(), environment.data());
    if (code != 0) {
        process_ = 0;
        return posixError(code, "Cannot start " + program.command.front());
    }
    if (group_ == 0) {
        group_ = process_;
    }
    // The library of Debian 12 declares its own wrapper as a function of C++.
    endSignal_ = UnixFd(static_cast<int>(::syscall(SYS_pidfd_open, process_, 0)));
    input_ = std::move(input.ours);
    output_ = std::move(output.ours);
    return {};
}

void ChildProcess::startWatcher() {
    auto watcher = start({.command = {"/bin/sh", "-c", kWatch}, .hasInput = true});
    if (watcher) {
        watcher_ = std::move(watcher.value());
        group_ = watcher_->process_;
    }
}

ChildProcess::~ChildProcess() {
    if (process_ > 0) {
        end(Seconds(0));
    }
}

std::optional<std::size_t> ChildProcess::write(std::string_view bytes) const {
    const auto written = ::send(input_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (written >= 0) {
        return static_cast<std::size_t>(written);
    }
    return isTransient(errno) ? std::optional<std::size_t>(0) : std::nullopt;
}

bool ChildProcess::read(std::string& bytes) const {
    std::array<char, 65536> buffer{};
    const auto got = ::read(output_.get(), buffer.data(), buffer.size());
    if (got > 0) {
        bytes.append(buffer.data(), static_cast<std::size_t>(got));
    }
    return got > 0 || (got < 0 && isTransient(errno));
}

std::optional<int> ChildProcess::ended() {
    if (status_ || process_ <= 0) {
        return status_;
    }
    siginfo_t info{};
    if (::waitid(P_PID, static_cast<id_t>(process_), &info, WEXITED | WNOHANG | WNOWAIT) != 0) {
        if (errno != ECHILD) {
            return std::nullopt;
        }
        // Collected behind our back, as the system does for a program that was started with SIGCHLD ignored.
        watcher_.reset();
        status_ = kStatusUnknown;
        return status_;
    }
    if (info.si_pid == 0) {
        return std::nullopt;
    }
    // What it has started holds what the next one needs. Before the leader is collected, since the number is
    // the group's own until then.
    kill(SIGKILL);
    watcher_.reset();
    int status = 0;
    while (::waitpid(process_, &status, 0) < 0 && errno == EINTR) {
    }
    status_ = status;
    return status_;
}

std::optional<int> ChildProcess::waitForEnd(Seconds atMost) {
    pollfd watched{endSignal_.get(), POLLIN, 0};
    const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(atMost).count();
    while (!ended() && ::poll(&watched, 1, static_cast<int>(milliseconds)) < 0 && errno == EINTR) {
    }
    return ended();
}

void ChildProcess::kill(int signal) const {
    ::kill(-group_, signal);
}

int ChildProcess::end(Seconds grace) {
    if (!ended() && grace > Seconds(0)) {
        kill(SIGTERM);
        static_cast<void>(waitForEnd(grace));
    }
    if (!ended()) {
        kill(SIGKILL);
        while (!waitForEnd(Seconds(1))) {
        }
    }
    return *status_;
}

} // namespace tovik
