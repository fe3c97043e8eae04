// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Audio/Vocabulary.h"

#include <algorithm>

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

} // namespace tovik
