// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/UnixFd.h"
#include "Platform/Clock.h"
#include "Platform/Result.h"

#include <string>

namespace tovik {

/// Holds a lock file against other processes and against other locks of this one. It ends with the object,
/// and with the process whatever kills it. The file itself stays.
class FileLock {
public:
    /// Waits for another holder at most this long; fails with EWOULDBLOCK when it still holds the lock then.
    /// The folder must exist. A file system without locks counts as locked: there is nothing better.
    static Result<FileLock> acquire(const std::string& path, Seconds patience);

private:
    explicit FileLock(UnixFd file) : file_(std::move(file)) {}

    UnixFd file_;
};

} // namespace tovik
