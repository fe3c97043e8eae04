// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"

#include <unistd.h>

#include <string>
#include <system_error>
#include <utility>

namespace tovik {

/// The failure of a system call as a sentence: what was tried, and the system's reason. The code is errno.
[[nodiscard]] inline Error posixError(int code, const std::string& attempt) {
    return {"POSIX", code, attempt + ": " + std::generic_category().message(code)};
}

/// Owns a file descriptor and closes it.
class UnixFd {
public:
    UnixFd() = default;
    /// Takes over the result of a system call; a negative one is "none".
    explicit UnixFd(int fd) : fd_(fd) {}
    UnixFd(UnixFd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    UnixFd& operator=(UnixFd&& other) noexcept {
        if (this != &other) {
            reset();
            fd_ = std::exchange(other.fd_, -1);
        }
        return *this;
    }
    UnixFd(const UnixFd&) = delete;
    UnixFd& operator=(const UnixFd&) = delete;
    ~UnixFd() { reset(); }

    [[nodiscard]] int get() const { return fd_; }
    explicit operator bool() const { return fd_ >= 0; }

    void reset() {
        if (fd_ >= 0) {
            ::close(std::exchange(fd_, -1));
        }
    }

private:
    int fd_ = -1;
};

} // namespace tovik
