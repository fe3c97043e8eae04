// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Storage/LocalFiles.h"

#include "Linux/Storage/FileReplacement.h"
#include "Platform/PosixError.h"
#include "Platform/UnixFd.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <memory>

namespace tovik {

namespace {

/// The system's calls would silently use the part before the NUL.
bool canBePath(const std::string& path) {
    return !path.empty() && path.find('\0') == std::string::npos;
}

Date dateOf(const timespec& time) {
    return Date(std::chrono::duration_cast<Date::duration>(std::chrono::seconds(time.tv_sec) +
                                                           std::chrono::nanoseconds(time.tv_nsec)));
}

/// What a full disk left of a text that was to be appended; unless somebody else has appended since.
void takeBack(int fd, off_t sizeBefore, off_t appended) {
    struct stat now {};
    if (appended > 0 && ::fstat(fd, &now) == 0 && now.st_size == sizeBefore + appended) {
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
    off_t appended = 0;
    while (!content.empty()) {
        const auto written = ::write(file.get(), content.data(), content.size());
        if (written < 0 && errno != EINTR) {
            const auto code = errno;
            if (known) {
                takeBack(file.get(), before.st_size, appended);
            }
            return posixError(code, attempt);
        }
        if (written > 0) {
            appended += written;
            content.remove_prefix(static_cast<std::size_t>(written));
        }
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
    const auto close = [](DIR* folder) { ::closedir(folder); };
    const std::unique_ptr<DIR, decltype(close)> folder(::opendir(path.c_str()), close);
    if (!folder) {
        return posixError(errno, attempt);
    }
    std::vector<FolderEntry> entries;
    errno = 0;
    while (const auto* entry = ::readdir(folder.get())) {
        const std::string name = entry->d_name;
        if (name.starts_with('.')) {
            continue;
        }
        struct stat status {};
        const bool known = ::fstatat(::dirfd(folder.get()), name.c_str(), &status, 0) == 0;
        entries.push_back({(std::filesystem::path(path) / name).string(),
                           known ? std::optional(dateOf(status.st_mtim)) : std::nullopt});
        errno = 0;
    }
    if (errno != 0) {
        return posixError(errno, attempt);
    }
    return entries;
}

} // namespace tovik
