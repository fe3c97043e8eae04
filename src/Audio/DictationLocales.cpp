// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Audio/DictationLocales.h"

namespace tovik {

const std::vector<DictationLocale>& localeDisplay() {
    static const std::vector<DictationLocale> rows{
        {"en-US", "🇺🇸 English (US)"},
        {"en-GB", "🇬🇧 English (UK)"},
        {"fr-FR", "🇫🇷 French"},
        {"es-ES", "🇪🇸 Spanish"},
        {"de-DE", "🇩🇪 German"},
        {"it-IT", "🇮🇹 Italian"},
        {"zh-CN", "🇨🇳 Chinese (Simplified)"},
        {"ja-JP", "🇯🇵 Japanese"},
    };
    return rows;
}

const std::vector<std::string>& supportedLocales() {
    static const std::vector<std::string> identifiers{"en-US", "en-GB", "fr-FR", "es-ES",
                                                      "de-DE", "it-IT", "zh-CN", "ja-JP"};
    return identifiers;
}

} // namespace tovik
