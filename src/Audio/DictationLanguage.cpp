// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Audio/DictationLanguage.h"

#include "Speech/Text/Unicode.h"

#include <algorithm>
#include <unordered_set>

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

std::vector<std::string> contextualStrings(const std::vector<std::string>& customTerms) {
    std::vector<std::string> terms(kBuiltinVocabulary.begin(), kBuiltinVocabulary.end());
    for (const auto& term : customTerms) {
        if (std::find(terms.begin(), terms.end(), term) == terms.end()) {
            terms.push_back(term);
        }
    }
    return terms;
}

std::vector<std::string> CustomVocabulary::terms(const UserDefaults& defaults) {
    return parse(defaults.string(vocabularyKey).value_or(""));
}

std::vector<std::string> CustomVocabulary::parse(std::string_view commaSeparated) {
    std::vector<std::string> terms;
    std::unordered_set<std::string_view> seen;
    std::size_t begin = 0;
    while (begin <= commaSeparated.size()) {
        const auto end = std::min(commaSeparated.find(',', begin), commaSeparated.size());
        const auto term = trimmed(commaSeparated.substr(begin, end - begin));
        if (!term.empty() && seen.insert(term).second) {
            terms.emplace_back(term);
        }
        begin = end + 1;
    }
    return terms;
}

} // namespace tovik
