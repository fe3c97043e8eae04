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
[[nodiscard]] inline const std::vector<TranslationLanguage>& availableTranslationLanguages() {
    static const std::vector<TranslationLanguage> languages{
        {"ar", "Arabic"},
        {"zh-Hans", "Chinese (Simplified)"},
        {"zh-Hant", "Chinese (Traditional)"},
        {"nl", "Dutch"},
        {"en", "English"},
        {"fr", "French"},
        {"de", "German"},
        {"hi", "Hindi"},
        {"id", "Indonesian"},
        {"it", "Italian"},
        {"ja", "Japanese"},
        {"ko", "Korean"},
        {"pl", "Polish"},
        {"pt-BR", "Portuguese (Brazil)"},
        {"ru", "Russian"},
        {"es", "Spanish"},
        {"th", "Thai"},
        {"tr", "Turkish"},
        {"uk", "Ukrainian"},
        {"vi", "Vietnamese"},
    };
    return languages;
}

inline constexpr const char* kTranslationEnabledKey = "TranslationEnabled";
inline constexpr const char* kTranslationSourceLanguageKey = "TranslationSourceLanguage";
inline constexpr const char* kTranslationTargetLanguageKey = "TranslationTargetLanguage";
/// What counts while the user has chosen no language.
inline constexpr const char* kDefaultSourceLanguage = "en";
inline constexpr const char* kDefaultTargetLanguage = "es";

} // namespace tovik
