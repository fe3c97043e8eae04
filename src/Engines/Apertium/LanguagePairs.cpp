// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Apertium/LanguagePairs.h"

#include <algorithm>
#include <map>

namespace tovik {

namespace {

/// Modes are named in two- or three-letter codes, whichever their makers preferred.
const std::vector<std::string>& codesOf(const std::string& language) {
    static const std::map<std::string, std::vector<std::string>> table{
        {"ar", {"ara", "ar"}},
        {"zh-Hans", {"zho", "zh"}},
        {"zh-Hant", {"zho_Hant", "zh_TW"}},
        {"nl", {"nld", "nl"}},
        {"en", {"eng", "en"}},
        {"fr", {"fra", "fr"}},
        {"de", {"deu", "de"}},
        {"hi", {"hin", "hi"}},
        {"id", {"ind", "id"}},
        {"it", {"ita", "it"}},
        {"ja", {"jpn", "ja"}},
        {"ko", {"kor", "ko"}},
        {"pl", {"pol", "pl"}},
        {"pt-BR", {"por_BR", "pt_BR", "por", "pt"}},
        {"ru", {"rus", "ru"}},
        {"es", {"spa", "es"}},
        {"th", {"tha", "th"}},
        {"tr", {"tur", "tr"}},
        {"uk", {"ukr", "uk"}},
        {"vi", {"vie", "vi"}},
    };
    static const std::vector<std::string> none;
    const auto found = table.find(language);
    return found == table.end() ? none : found->second;
}

} // namespace

std::vector<std::string> modeNames(const TranslationPair& pair) {
    std::vector<std::string> names;
    for (const auto& target : codesOf(pair.target)) {
        for (const auto& source : codesOf(pair.source)) {
            names.push_back(source);
            names.back().append("-").append(target);
        }
    }
    return names;
}

std::optional<std::string> packageOfPair(const TranslationPair& pair) {
    static const std::map<TranslationPair, std::string> packages{
        {{"en", "es"}, "apertium-eng-spa"},  {{"es", "fr"}, "apertium-fr-es"},
        {{"es", "pt-BR"}, "apertium-es-pt"}, {{"es", "it"}, "apertium-spa-ita"},
        {{"ru", "uk"}, "apertium-rus-ukr"},
    };
    auto found = packages.find(pair);
    if (found == packages.end()) {
        found = packages.find({pair.target, pair.source});
    }
    return found == packages.end() ? std::nullopt : std::optional(found->second);
}

} // namespace tovik
