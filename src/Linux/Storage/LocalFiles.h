// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Files.h"
#include "Platform/MainQueue.h"
#include "Platform/Posix.h"
#include "Platform/Result.h"

#include <string>
#include <string_view>
#include <utility>

namespace tovik {

/// The file system of this machine. What it creates is readable by the user alone. Any thread.
class LocalFiles : public Files {
public:
    Result<void> createFolder(const std::string& path) override;
    Result<void> writeAtomically(const std::string& path, std::string_view content) override;
    Result<void> append(const std::string& path, std::string_view content) override;
    Result<void> remove(const std::string& path) override;
    [[nodiscard]] bool exists(const std::string& path) const override;
    [[nodiscard]] Result<std::vector<FolderEntry>> contentsOfFolder(const std::string& path) const override;
};

/// Creates a folder and the folders above it, readable by the user alone. An existing folder is left as it
/// is and no error.
Result<void> createPrivateFolder(const std::string& path);

/// The file that a path leads to when its last component is a symbolic link, also a dangling one; otherwise
/// the path itself. A file that is replaced through its link keeps the link.
[[nodiscard]] Result<std::string> followLinks(const std::string& path);

/// Writes a file that must not exist yet (EEXIST), and brings it safely to the disk. Mode 0600.
Result<void> createFile(const std::string& path, std::string_view content);

/// What a file outlasts once it is written: of this program alone, which waits for no disk, or of the whole
/// machine, which may have to wait long for one.
enum class Survives { crashes, powerFailures };

/// Writes a new file and only then moves it over the old one: whatever dies when, there is the old content or
/// the new. temporaryPath lies in the same folder, belongs to the caller alone and is gone afterwards; an old
/// file of that name is dropped. Mode 0600.
///
/// QSaveFile (Qt 6.4) calls it done when the disk did not take the content, does not sync the folder, hands
/// on the old file's mode, and waits for the disk in any case.
Result<void> replaceFile(const std::string& path, const std::string& temporaryPath, std::string_view content,
                         Survives survives = Survives::powerFailures);

/// Holds a lock file against other processes and against other locks of this one. It ends with the object,
/// and with the process whatever kills it. The file itself stays.
///
/// QLockFile goes by the number of the process that holds it, which says nothing in a container and may be
/// another's after a crash; and it looks again only after 100 ms.
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
