// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// A language that the user can dictate in.
struct DictationLocale {
    std::string identifier;
    /// As the menu shows it: flag, blank, name.
    std::string title;

    bool operator==(const DictationLocale&) const = default;
};

/// In the order of the menu.
[[nodiscard]] const std::vector<DictationLocale>& localeDisplay();

/// Identifiers in the order in which a recogniser is looked for when neither the user nor the system names
/// a usable one.
[[nodiscard]] const std::vector<std::string>& supportedLocales();

/// The choice of no language in particular: not a row of localeDisplay(), chosen when nothing is stored.
inline constexpr std::string_view kAutoDetectTitle = "🌐 Auto-detect";

/// User default: the identifier of the user's dictation language (string), absent for auto-detect.
inline constexpr std::string_view kSelectedDictationLocaleKey = "SelectedDictationLocale";

} // namespace tovik
