// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Audio/Vocabulary.h"

#include "Speech/Text/Unicode.h"

#include <algorithm>
#include <unordered_set>

namespace tovik {

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
