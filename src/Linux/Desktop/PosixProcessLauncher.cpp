// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/PosixProcessLauncher.h"

#include "Platform/Posix.h"

#include <fcntl.h>
#include <linux/close_range.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <sstream>

namespace tovik {

namespace {

/// What execvp would start; found before the fork, after which little is allowed.
std::string findProgram(const std::string& name) {
    if (name.find('/') != std::string::npos) {
        return name;
    }
    const auto* folders = std::getenv("PATH");
    std::istringstream path(folders ? folders : "/usr/local/bin:/usr/bin:/bin");
    for (std::string folder; std::getline(path, folder, ':');) {
        auto candidate = (folder.empty() ? "." : folder) + "/" + name;
        if (::access(candidate.c_str(), X_OK) == 0) {
            return candidate;
        }
    }
    return {};
}

void forgetSignalSettings() {
    for (int signal = 1; signal < NSIG; ++signal) {
        ::signal(signal, SIG_DFL);
    }
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

/// Runs in the child between fork and exec: system calls only. Reports errno where it fails.
[[noreturn]] void become(const char* program, char* const* arguments, int reportFd) {
    ::setsid();
    forgetSignalSettings();
    // A second fork leaves the program to the init process, which collects it when it ends.
    const auto child = ::fork();
    if (child == 0) {
        const int nothing = ::open("/dev/null", O_RDONLY);
        ::dup2(nothing, STDIN_FILENO);
        ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
        ::execv(program, arguments);
    }
    if (child <= 0) {
        const int code = errno;
        (void)!::write(reportFd, &code, sizeof code);
    }
    ::_exit(0);
}

/// 0, or the errno that the other end reported before it was closed.
int waitForReport(int fd) {
    int code = 0;
    ssize_t got = 0;
    do {
        got = ::read(fd, &code, sizeof code);
    } while (got < 0 && errno == EINTR);
    return got == sizeof code ? code : 0;
}

} // namespace

Result<void> PosixProcessLauncher::launch(const std::string& executable,
                                          const std::vector<std::string>& arguments) {
    const auto attempt = "Cannot start " + executable;
    const auto program = findProgram(executable);
    if (program.empty()) {
        return posixError(ENOENT, attempt);
    }
    std::vector<char*> argv{const_cast<char*>(executable.c_str())};
    for (const auto& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);

    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        return posixError(errno, attempt);
    }
    const UnixFd reader(ends[0]);
    UnixFd writer(ends[1]);
    const auto child = ::fork();
    if (child < 0) {
        return posixError(errno, attempt);
    }
    if (child == 0) {
        become(program.c_str(), argv.data(), writer.get());
    }
    writer.reset();
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    if (const auto code = waitForReport(reader.get())) {
        return posixError(code, attempt);
    }
    return {};
}

} // namespace tovik
