// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Apertium/StageProcesses.h"

#include "Platform/PosixError.h"
#include "Engines/Host/SpawnAttributes.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

namespace tovik {

namespace {

/// Far beyond any translation of what is sent.
constexpr std::size_t kLongestAnswer = 64 << 20;

Error stopped() {
    return {"Apertium", 3, "The Apertium translator stopped before it answered."};
}

class FileActions {
public:
    FileActions() { posix_spawn_file_actions_init(&actions_); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }

    void use(int fd, int as) { posix_spawn_file_actions_adddup2(&actions_, fd, as); }
    void useNothing(int as) { posix_spawn_file_actions_addopen(&actions_, as, "/dev/null", O_WRONLY, 0); }
    [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_{};
};

/// Ours, in a character encoding that the stages can read.
std::vector<char*> stageEnvironment() {
    static char encoding[] = "LC_ALL=C.UTF-8";
    std::vector<char*> variables{encoding};
    for (char** variable = environ; *variable != nullptr; ++variable) {
        if (std::strncmp(*variable, "LC_ALL=", 7) != 0) {
            variables.push_back(*variable);
        }
    }
    variables.push_back(nullptr);
    return variables;
}

Result<pid_t> spawn(const Stage& stage, int input, int output) {
    FileActions files;
    files.use(input, STDIN_FILENO);
    files.use(output, STDOUT_FILENO);
    files.useNothing(STDERR_FILENO);
    const SpawnAttributes attributes;
    std::vector<char*> arguments;
    for (const auto& argument : stage) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    auto environment = stageEnvironment();
    pid_t process = 0;
    const int code = posix_spawnp(&process, stage.front().c_str(), files.get(), attributes.get(),
                                  arguments.data(), environment.data());
    if (code != 0) {
        return posixError(code, "Cannot start " + stage.front());
    }
    return process;
}

Result<std::pair<UnixFd, UnixFd>> makePipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        return posixError(errno, "Cannot start the Apertium translator");
    }
    return std::pair(UnixFd(ends[0]), UnixFd(ends[1]));
}

} // namespace

Result<std::unique_ptr<StageProcesses>> StageProcesses::start(const std::vector<Stage>& stages) {
    std::unique_ptr<StageProcesses> started(new StageProcesses);
    auto first = makePipe();
    if (!first) {
        return first.error();
    }
    auto& [nextInput, input] = first.value();
    for (const auto& stage : stages) {
        auto pipe = makePipe();
        if (!pipe) {
            return pipe.error();
        }
        const auto process = spawn(stage, nextInput.get(), pipe.value().second.get());
        if (!process) {
            return process.error();
        }
        started->processes_.push_back(process.value());
        nextInput = std::move(pipe.value().first);
    }
    started->input_ = std::move(input);
    started->output_ = std::move(nextInput);
    ::fcntl(started->input_.get(), F_SETFL, O_NONBLOCK);
    return started;
}

StageProcesses::~StageProcesses() {
    kill();
    for (const auto process : processes_) {
        while (::waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
}

void StageProcesses::kill() const {
    // None is collected before the end, so none of these numbers can mean another process by now.
    for (const auto process : processes_) {
        ::kill(process, SIGKILL);
    }
}

bool StageProcesses::send(std::string_view& request) const {
    const auto sent = ::write(input_.get(), request.data(), request.size());
    if (sent > 0) {
        request.remove_prefix(static_cast<std::size_t>(sent));
    }
    return sent > 0 || errno == EAGAIN || errno == EINTR;
}

bool StageProcesses::receive(std::string& answer) const {
    std::array<char, 65536> buffer{};
    const auto got = ::read(output_.get(), buffer.data(), buffer.size());
    if (got > 0) {
        answer.append(buffer.data(), static_cast<std::size_t>(got));
    }
    return (got > 0 && answer.size() <= kLongestAnswer) || (got < 0 && errno == EINTR);
}

Result<std::string> StageProcesses::exchange(std::string_view request) {
    std::string answer;
    while (true) {
        std::array<pollfd, 2> watched{pollfd{output_.get(), POLLIN, 0},
                                      pollfd{request.empty() ? -1 : input_.get(), POLLOUT, 0}};
        if (::poll(watched.data(), watched.size(), -1) < 0) {
            continue;
        }
        if (watched[1].revents != 0 && !send(request)) {
            return stopped();
        }
        if (watched[0].revents != 0 && !receive(answer)) {
            return stopped();
        }
        if (answer.ends_with('\0')) {
            answer.pop_back();
            return answer;
        }
    }
}

} // namespace tovik
