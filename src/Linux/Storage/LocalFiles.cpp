// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Storage/LocalFiles.h"

#include "Platform/Posix.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <thread>

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

/// 0 or errno; what could not be written is left in rest.
int writeAll(int fd, std::string_view& rest) {
    while (!rest.empty()) {
        const auto written = ::write(fd, rest.data(), rest.size());
        if (written < 0 && errno != EINTR) {
            return errno;
        }
        if (written > 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
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

constexpr std::chrono::milliseconds kRetryInterval(2);

bool hasNoLocks(int code) {
    return code == ENOLCK || code == ENOSYS || code == EOPNOTSUPP;
}

/// The system's calls would silently use the part before the NUL.
bool canBePath(const std::string& path) {
    return !path.empty() && path.find('\0') == std::string::npos;
}

/// What a full disk left of a text that was to be appended; unless somebody else has appended since.
void takeBack(int fd, off_t sizeBefore, std::size_t appended) {
    struct stat now {};
    if (appended > 0 && ::fstat(fd, &now) == 0 && now.st_size == sizeBefore + static_cast<off_t>(appended)) {
        (void)!::ftruncate(fd, sizeBefore);
    }
}

/// Beside the file, hidden, and of this process and call alone.
std::string temporaryPathFor(const std::string& path) {
    static std::atomic<unsigned> counter = 0;
    const std::filesystem::path file(path);
    const auto name = "." + file.filename().string() + "." + std::to_string(::getpid()) + "-" +
                      std::to_string(counter++) + ".new";
    return (file.parent_path() / name).string();
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

Result<void> LocalFiles::createFolder(const std::string& path) {
    if (!canBePath(path)) {
        return posixError(EINVAL, "Cannot create a folder without a name");
    }
    return createPrivateFolder(path);
}

Result<void> LocalFiles::writeAtomically(const std::string& path, std::string_view content) {
    if (!canBePath(path)) {
        return posixError(EINVAL, "Cannot write a file without a name");
    }
    const auto target = followLinks(path);
    if (!target) {
        return target.error();
    }
    return replaceFile(target.value(), temporaryPathFor(target.value()), content, Survives::crashes);
}

Result<void> LocalFiles::append(const std::string& path, std::string_view content) {
    const auto attempt = "Cannot append to " + path;
    if (!canBePath(path)) {
        return posixError(EINVAL, attempt);
    }
    const UnixFd file(::open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC | O_NONBLOCK));
    if (!file) {
        return posixError(errno, attempt);
    }
    struct stat before {};
    const bool known = ::fstat(file.get(), &before) == 0 && S_ISREG(before.st_mode);
    auto rest = content;
    if (const auto code = writeAll(file.get(), rest)) {
        if (known) {
            takeBack(file.get(), before.st_size, content.size() - rest.size());
        }
        return posixError(code, attempt);
    }
    return {};
}

Result<void> LocalFiles::remove(const std::string& path) {
    if (!canBePath(path) || ::unlink(path.c_str()) != 0) {
        return posixError(canBePath(path) ? errno : EINVAL, "Cannot remove " + path);
    }
    return {};
}

bool LocalFiles::exists(const std::string& path) const {
    struct stat status {};
    return canBePath(path) && ::stat(path.c_str(), &status) == 0;
}

Result<std::vector<FolderEntry>> LocalFiles::contentsOfFolder(const std::string& path) const {
    const auto attempt = "Cannot read the folder " + path;
    if (!canBePath(path)) {
        return posixError(EINVAL, attempt);
    }
    std::vector<FolderEntry> entries;
    std::error_code failure;
    for (std::filesystem::directory_iterator at(path, failure), end; !failure && at != end;
         at.increment(failure)) {
        if (at->path().filename().native().starts_with('.')) {
            continue;
        }
        std::error_code unknown;
        const auto time = at->last_write_time(unknown);
        const auto date = std::chrono::time_point_cast<Date::duration>(std::chrono::file_clock::to_sys(time));
        entries.push_back({at->path().string(), unknown ? std::nullopt : std::optional(date)});
    }
    if (failure) {
        return posixError(failure.value(), attempt);
    }
    return entries;
}

} // namespace tovik
