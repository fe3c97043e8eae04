// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/UnixFd.h"
#include "Platform/Result.h"

#include <string>
#include <vector>

namespace tovik {

/// Notices when a file has got new content, by whatever way: written in place, replaced, removed, or reached
/// through a link that leads elsewhere. Works on the folders, which stay when files are replaced.
class FileWatch {
public:
    /// Creates the file's folder when it is missing.
    [[nodiscard]] static Result<FileWatch> start(const std::string& path);

    /// Readable when there is something to take.
    [[nodiscard]] int fd() const { return inotify_.get(); }

    /// Takes what has been noticed since the last time. True: the file may have changed. Does not wait.
    [[nodiscard]] bool takeChanges();

private:
    struct Place {
        int watch;
        std::string folder;
        std::string name;
    };

    FileWatch(UnixFd inotify, std::string path) : inotify_(std::move(inotify)), path_(std::move(path)) {}
    [[nodiscard]] Result<void> watchPlaces();
    [[nodiscard]] Result<void> watchFile(const std::string& file);

    UnixFd inotify_;
    std::string path_;
    /// The path itself and, when that is a link, where it leads.
    std::vector<Place> places_;
};

} // namespace tovik
