// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Translation/TranslationLanguage.h"

namespace tovik {

const std::vector<TranslationLanguage>& availableTranslationLanguages() {
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

} // namespace tovik
