// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace tovik {

/// A language to translate from or into.
struct TranslationLanguage {
    /// As translation services know it.
    std::string id;
    /// As the user reads it.
    std::string name;

    bool operator==(const TranslationLanguage&) const = default;
};

/// The languages that the user can choose, by name.
[[nodiscard]] const std::vector<TranslationLanguage>& availableTranslationLanguages();

inline constexpr const char* kTranslationEnabledKey = "TranslationEnabled";
inline constexpr const char* kTranslationSourceLanguageKey = "TranslationSourceLanguage";
inline constexpr const char* kTranslationTargetLanguageKey = "TranslationTargetLanguage";
/// What counts while the user has chosen no language.
inline constexpr const char* kDefaultSourceLanguage = "en";
inline constexpr const char* kDefaultTargetLanguage = "es";

} // namespace tovik
