// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/Result.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

struct FolderEntry {
    std::string path;
    /// Nothing when it cannot be read.
    std::optional<Date> contentModificationDate;

    bool operator==(const FolderEntry&) const = default;
};

/// The file system. Paths are absolute. Main thread, save for appending to a log.
class Files {
public:
    virtual ~Files() = default;

    /// With the folders above it; an existing folder is no error.
    virtual Result<void> createFolder(const std::string& path) = 0;

    /// Another process sees the old content or the new, never a part, also when this one dies meanwhile; the
    /// old stays when it fails. Does not wait for the disk: a power failure soon afterwards may undo it.
    virtual Result<void> writeAtomically(const std::string& path, std::string_view content) = 0;

    /// Fails when the file does not exist. The old content stays when it fails.
    virtual Result<void> append(const std::string& path, std::string_view content) = 0;

    virtual Result<void> remove(const std::string& path) = 0;
    [[nodiscard]] virtual bool exists(const std::string& path) const = 0;

    /// The immediate contents without hidden files, in the folder's order.
    [[nodiscard]] virtual Result<std::vector<FolderEntry>>
    contentsOfFolder(const std::string& path) const = 0;
};

} // namespace tovik
