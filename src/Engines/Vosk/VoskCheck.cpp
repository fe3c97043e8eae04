// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Vosk/VoskCheck.h"

#include "Engines/Host/RecognitionError.h"
#include "Platform/PosixError.h"
#include "Engines/Host/SpawnAttributes.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <optional>

namespace tovik {

namespace {

/// What a started program begins with: no files but an empty standard input and output, and signals as usual.
class CleanStart {
public:
    CleanStart() {
        posix_spawn_file_actions_init(&files_);
        posix_spawn_file_actions_addopen(&files_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        // The library complains there, and quotes the files that it cannot read.
        posix_spawn_file_actions_addopen(&files_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&files_, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addclosefrom_np(&files_, STDERR_FILENO + 1);
    }
    CleanStart(const CleanStart&) = delete;
    CleanStart& operator=(const CleanStart&) = delete;
    ~CleanStart() { posix_spawn_file_actions_destroy(&files_); }

    /// 0, or an errno.
    [[nodiscard]] int spawn(pid_t& process, const char* program, char* const* arguments) const {
        return ::posix_spawn(&process, program, &files_, attributes_.get(), arguments, environ);
    }

private:
    posix_spawn_file_actions_t files_{};
    SpawnAttributes attributes_;
};

/// What is wrong, when something is.
std::optional<std::string> whyNot(int status) {
    if (WIFEXITED(status)) {
        return WEXITSTATUS(status) == 0 ? std::nullopt : std::optional<std::string>("the library refuses it");
    }
    return WTERMSIG(status) == SIGALRM ? "the library does not come back from it"
                                       : "the library breaks down over it";
}

} // namespace

std::string VoskCheck::besideThisProgram() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return (program.parent_path() / "tovik-check-vosk").string();
}

Result<void> VoskCheck::run(const std::string& library, const std::string& modelFolder) const {
    const char* const arguments[] = {program_.c_str(), library.c_str(), modelFolder.c_str(), nullptr};
    pid_t process = 0;
    const int code = CleanStart().spawn(process, program_.c_str(), const_cast<char* const*>(arguments));
    if (code != 0) {
        return posixError(code, "The Vosk model cannot be checked: cannot start " + program_);
    }
    int status = 0;
    while (::waitpid(process, &status, 0) < 0) {
        if (errno != EINTR) {
            return posixError(errno, "The Vosk model cannot be checked");
        }
    }
    if (const auto why = whyNot(status)) {
        return recognitionError(RecognitionCode::noModel, "The Vosk model " + modelFolder +
                                                              " is not usable: " + *why +
                                                              ". Unpack it anew.");
    }
    return {};
}

} // namespace tovik
