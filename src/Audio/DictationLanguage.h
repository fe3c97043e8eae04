// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/UserDefaults.h"

#include <array>
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

/// Identifiers in the order in which a recognizer is looked for when neither the user nor the system names
/// a usable one.
[[nodiscard]] const std::vector<std::string>& supportedLocales();

/// The choice of no language in particular: not a row of localeDisplay(), chosen when nothing is stored.
inline constexpr std::string_view kAutoDetectTitle = "🌐 Auto-detect";

/// User default: the identifier of the user's dictation language (string), absent for auto-detect.
inline constexpr std::string_view kSelectedDictationLocaleKey = "SelectedDictationLocale";

/// Terms that every recognizer is asked to favour: names that people say and no dictionary holds.
inline constexpr std::array<std::string_view, 15> kBuiltinVocabulary{
    "Tovik",   "Tovik Record", "GitHub", "Slack",  "Zoom",    "Notion",  "Figma",   "Jira",
    "Dropbox", "Salesforce",   "Stripe", "Trello", "Spotify", "Discord", "LinkedIn"};

/// The built-in terms and then the user's own, each once.
[[nodiscard]] std::vector<std::string> contextualStrings(const std::vector<std::string>& customTerms);

/// The words that the user wants the recognizer to favour. Any thread.
class CustomVocabulary {
public:
    static constexpr std::string_view vocabularyKey = "CustomVocabulary";

    /// Read anew on every call: the terms of the stored list, each once, in the order of their first
    /// appearance.
    [[nodiscard]] static std::vector<std::string> terms(const UserDefaults& defaults);

    /// The terms of a comma-separated list, trimmed; empty ones are left out.
    [[nodiscard]] static std::vector<std::string> parse(std::string_view commaSeparated);
};

} // namespace tovik
