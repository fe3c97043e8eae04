// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Files.h"

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

} // namespace tovik
