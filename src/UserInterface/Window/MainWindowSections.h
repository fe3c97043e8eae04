// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UserInterface/Controls/Rgba.h"

#include <string>
#include <vector>

namespace tovik {

/// What the header of a section of the main window shows.
struct SectionHeader {
    std::string title;
    std::string subtitle;
    std::string symbolName;
    Rgba symbolColor;

    bool operator==(const SectionHeader&) const = default;
};

inline constexpr const char* kPermissionsSection = "Permissions";
inline constexpr const char* kCorrectionsSection = "Corrections";
inline constexpr const char* kCleanupSection = "Cleanup";
inline constexpr const char* kTranslationSection = "Translation";
inline constexpr const char* kHistorySection = "Transcript History";

/// The sections from top to bottom. While a permission is missing, the permissions come first.
[[nodiscard]] std::vector<SectionHeader> mainWindowSections(bool hasPendingPermissions);

} // namespace tovik
