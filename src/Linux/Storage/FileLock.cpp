// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Storage/FileLock.h"

#include "Platform/PosixError.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <chrono>
#include <thread>

namespace tovik {

namespace {

constexpr std::chrono::milliseconds kRetryInterval(2);

bool hasNoLocks(int code) {
    return code == ENOLCK || code == ENOSYS || code == EOPNOTSUPP;
}

} // namespace

Result<FileLock> FileLock::acquire(const std::string& path, Seconds patience) {
    UnixFd file(::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file) {
        return posixError(errno, "Cannot open " + path);
    }
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        const auto code = errno;
        if (hasNoLocks(code)) {
            break;
        }
        if (code != EINTR && (code != EWOULDBLOCK || std::chrono::steady_clock::now() >= deadline)) {
            return posixError(code, "Cannot lock " + path);
        }
        // A blocking lock could not be given up when its holder hangs.
        std::this_thread::sleep_for(kRetryInterval);
    }
    return FileLock(std::move(file));
}

} // namespace tovik
