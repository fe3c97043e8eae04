// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Storage/FileReplacement.h"

#include "Platform/PosixError.h"
#include "Platform/UnixFd.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace tovik {

namespace {

constexpr int kMostLinks = 40;

bool isFolder(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::string parentOf(const std::string& path) {
    return std::filesystem::path(path).parent_path().string();
}

/// 0 or errno.
int writeAll(int fd, std::string_view content) {
    while (!content.empty()) {
        const auto written = ::write(fd, content.data(), content.size());
        if (written < 0 && errno != EINTR) {
            return errno;
        }
        if (written > 0) {
            content.remove_prefix(static_cast<std::size_t>(written));
        }
    }
    return 0;
}

int writeNewFile(const std::string& path, std::string_view content, Survives survives) {
    const UnixFd file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file) {
        return errno;
    }
    auto code = writeAll(file.get(), content);
    if (code == 0 && survives == Survives::powerFailures && ::fsync(file.get()) != 0) {
        code = errno;
    }
    if (code != 0) {
        ::unlink(path.c_str());
    }
    return code;
}

/// The move itself must survive a power failure. Some file systems cannot sync a folder, and need not.
int syncFolder(const std::string& path) {
    const UnixFd folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder) {
        return errno == EACCES ? 0 : errno;
    }
    return ::fsync(folder.get()) == 0 || errno == EINVAL ? 0 : errno;
}

} // namespace

Result<void> createPrivateFolder(const std::string& path) {
    if (isFolder(path)) {
        return {};
    }
    if (const auto parent = parentOf(path); !parent.empty() && parent != path) {
        if (auto created = createPrivateFolder(parent); !created) {
            return created;
        }
    }
    if (::mkdir(path.c_str(), 0700) != 0) {
        const auto code = errno;
        if (code != EEXIST) {
            return posixError(code, "Cannot create the folder " + path);
        }
        // Somebody else may have made it in the meantime.
        if (!isFolder(path)) {
            return posixError(ENOTDIR, "Cannot create the folder " + path);
        }
    }
    return {};
}

Result<std::string> followLinks(const std::string& path) {
    std::filesystem::path current = path;
    for (int links = 0; links < kMostLinks; ++links) {
        std::error_code failure;
        if (!std::filesystem::is_symlink(std::filesystem::symlink_status(current, failure))) {
            return current.string();
        }
        const auto target = std::filesystem::read_symlink(current, failure);
        if (failure) {
            return posixError(failure.value(), "Cannot follow " + current.string());
        }
        current = current.parent_path() / target;
    }
    return posixError(ELOOP, "Cannot follow " + path);
}

Result<void> createFile(const std::string& path, std::string_view content) {
    if (const auto code = writeNewFile(path, content, Survives::powerFailures)) {
        return posixError(code, "Cannot write " + path);
    }
    return {};
}

Result<void> replaceFile(const std::string& path, const std::string& temporaryPath, std::string_view content,
                         Survives survives) {
    const auto attempt = "Cannot write " + path;
    ::unlink(temporaryPath.c_str());
    if (const auto code = writeNewFile(temporaryPath, content, survives)) {
        return posixError(code, attempt);
    }
    if (::rename(temporaryPath.c_str(), path.c_str()) != 0) {
        const auto code = errno;
        ::unlink(temporaryPath.c_str());
        return posixError(code, attempt);
    }
    if (survives == Survives::powerFailures) {
        if (const auto code = syncFolder(parentOf(path))) {
            return posixError(code, attempt);
        }
    }
    return {};
}

} // namespace tovik
