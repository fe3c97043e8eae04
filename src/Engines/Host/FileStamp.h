// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tovik {

/// Another text after one of the files, or one anywhere in one of the folders, has come, gone or changed.
/// Reads no file.
[[nodiscard]] std::string fileStamp(const std::vector<std::filesystem::path>& filesAndFolders);

} // namespace tovik
