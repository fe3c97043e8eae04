// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Audio/Vocabulary.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace tovik {

namespace {

// White space as Unicode has it, so that a no-break space from a pasted list does not stick to a term.
std::string_view trimmed(std::string_view text) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    auto begin = std::int32_t{0};
    auto end = static_cast<std::int32_t>(text.size());
    for (auto next = begin; begin < end; begin = next) {
        UChar32 character = 0;
        U8_NEXT(bytes, next, end, character);
        if (character < 0 || !u_isUWhiteSpace(character)) {
            break;
        }
    }
    for (auto previous = end; end > begin; end = previous) {
        UChar32 character = 0;
        U8_PREV(bytes, begin, previous, character);
        if (character < 0 || !u_isUWhiteSpace(character)) {
            break;
        }
    }
    return text.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin));
}

} // namespace

std::vector<std::string> customVocabularyTerms(std::string_view commaSeparated) {
    std::vector<std::string> terms;
    while (!commaSeparated.empty()) {
        const auto comma = commaSeparated.find(',');
        if (const auto term = trimmed(commaSeparated.substr(0, comma)); !term.empty()) {
            terms.emplace_back(term);
        }
        commaSeparated.remove_prefix(comma == std::string_view::npos ? commaSeparated.size() : comma + 1);
    }
    return terms;
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

} // namespace tovik
