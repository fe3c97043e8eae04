// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"

#include <string>
#include <string_view>

namespace tovik {

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
Result<void> replaceFile(const std::string& path, const std::string& temporaryPath, std::string_view content,
                         Survives survives = Survives::powerFailures);

} // namespace tovik
