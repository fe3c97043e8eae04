// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/PocketSphinx/TermPronouncer.h"

#include "Platform/AsciiCase.h"

#include <flite/flite.h>

#include <algorithm>
#include <array>
#include <utility>

// The library's headers leave it to the program to declare the lexicons that it links, in the form that
// flite_add_lang() takes.
extern "C" cst_lexicon* cmulex_init();

namespace tovik {

namespace {

/// Abbreviations are this long at most: longer ones are said as words.
constexpr std::size_t kLongestAbbreviation = 5;
/// Parts of compounds have this many letters at least, or are one of the prefixes.
constexpr std::size_t kShortestPart = 3;
constexpr std::array<std::string_view, 8> kPrefixes{"un", "re", "in", "de", "up", "on", "co", "ex"};
constexpr std::size_t kMostPronunciations = 3;
/// Names of the program's own vocabulary of which the rules of spelling drop a vowel.
constexpr std::array<std::pair<std::string_view, std::string_view>, 1> kNames{{{"jira", "JH IH R AH"}}};

bool isUpper(char character) {
    return character >= 'A' && character <= 'Z';
}
bool isLower(char character) {
    return character >= 'a' && character <= 'z';
}
bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

/// The runs of letters and apostrophes, and each digit alone.
std::vector<std::string> wordsOf(std::string_view term) {
    std::vector<std::string> words;
    bool open = false;
    for (const char character : term) {
        if (isDigit(character)) {
            words.emplace_back(1, character);
            open = false;
        } else if (isUpper(character) || isLower(character) || (character == '\'' && open)) {
            if (!open) {
                words.emplace_back();
            }
            words.back() += character;
            open = true;
        } else {
            open = false;
        }
    }
    return words;
}

/// "GitHub" are two words, and so are "HTMLParser".
std::vector<std::string> humpsOf(const std::string& word) {
    std::vector<std::string> humps(1);
    for (std::size_t i = 0; i < word.size(); ++i) {
        const bool rises = i > 0 && isUpper(word[i]) && isLower(word[i - 1]);
        const bool lastOfCapitals =
            i > 0 && i + 1 < word.size() && isUpper(word[i]) && isUpper(word[i - 1]) && isLower(word[i + 1]);
        if (rises || lastOfCapitals) {
            humps.emplace_back();
        }
        humps.back() += word[i];
    }
    return humps;
}

bool isAbbreviation(const std::string& word) {
    return word.size() <= kLongestAbbreviation && std::all_of(word.begin(), word.end(), isUpper);
}

void addOnce(std::vector<std::string>& pronunciations, std::string phones) {
    if (!phones.empty() &&
        std::find(pronunciations.begin(), pronunciations.end(), phones) == pronunciations.end()) {
        pronunciations.push_back(std::move(phones));
    }
}

std::string joined(const std::string& before, const std::string& after) {
    return before + (before.empty() || after.empty() ? "" : " ") + after;
}

/// Flite's phone as the recogniser names it, which knows no stress, and so no vowel of unstressed syllables.
std::string arpabet(std::string_view phone) {
    const auto bare = phone.substr(0, phone.find_first_of("01"));
    if (bare == "ax") {
        return "AH";
    }
    std::string upper(bare);
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](char letter) { return static_cast<char>(letter - 'a' + 'A'); });
    return upper;
}

/// How Flite says a word of lower-case letters and apostrophes: as its lexicon has it, else by the rules that
/// were learned from the dictionary of which the recogniser's is a later version. A letter is its name.
std::string spoken(const std::string& word) {
    static const cst_lexicon* const lexicon = cmulex_init();
    // Said as a noun, since the article "a" is no letter's name.
    auto* const phones = lex_lookup(lexicon, word.c_str(), "n", nullptr);
    std::string way;
    for (const cst_val* phone = phones; phone != nullptr; phone = val_cdr(phone)) {
        way = joined(way, arpabet(val_string(val_car(phone))));
    }
    delete_val(phones);
    return way;
}

std::string spelledOut(const std::string& word) {
    std::string way;
    for (const char letter : word) {
        way = joined(way, spoken(std::string(1, letter)));
    }
    return way;
}

} // namespace

TermPronouncer::TermPronouncer(Dictionary dictionary) : dictionary_(std::move(dictionary)) {}

std::vector<std::string> TermPronouncer::pronounce(std::string_view term) const {
    std::vector<std::string> whole;
    for (const auto& word : wordsOf(term)) {
        const auto ways = pronounceWord(word);
        if (ways.empty()) {
            return {};
        }
        if (whole.empty()) {
            whole = ways;
            continue;
        }
        // Of a phrase each word's likeliest way is taken, and every further way once.
        std::vector<std::string> longer;
        for (const auto& way : ways) {
            addOnce(longer, joined(whole.front(), way));
        }
        for (const auto& way : whole) {
            addOnce(longer, joined(way, ways.front()));
        }
        whole = std::move(longer);
    }
    whole.resize(std::min(whole.size(), kMostPronunciations));
    return whole;
}

std::vector<std::string> TermPronouncer::pronounceWord(const std::string& word) const {
    static constexpr std::array<const char*, 10> digits{"zero", "one", "two",   "three", "four",
                                                        "five", "six", "seven", "eight", "nine"};
    std::vector<std::string> ways;
    const auto lower = isDigit(word.front())
                           ? std::string(digits[static_cast<std::size_t>(word.front() - '0')])
                           : asciiLowerCased(word);
    if (const auto known = dictionary_(lower)) {
        addOnce(ways, *known);
        for (int variant = 2;; ++variant) {
            const auto other = dictionary_(lower + "(" + std::to_string(variant) + ")");
            if (!other) {
                return ways;
            }
            addOnce(ways, *other);
        }
    }
    if (isAbbreviation(word)) {
        addOnce(ways, spelledOut(lower));
        return ways;
    }
    if (const auto humps = humpsOf(word); humps.size() > 1) {
        std::string phones;
        for (const auto& hump : humps) {
            const auto way = pronounceWord(hump);
            phones = joined(phones, way.empty() ? "" : way.front());
        }
        addOnce(ways, phones);
        return ways;
    }
    const auto* const name = std::find_if(kNames.begin(), kNames.end(),
                                          [&](const auto& candidate) { return candidate.first == lower; });
    if (name != kNames.end()) {
        return {std::string(name->second)};
    }
    if (auto parts = compound(lower)) {
        addOnce(ways, std::move(*parts));
    }
    addOnce(ways, spoken(lower));
    return ways;
}

/// The word as two words of the dictionary, cut as near to its middle as can be.
std::optional<std::string> TermPronouncer::compound(const std::string& word) const {
    for (auto shorter = word.size() / 2; shorter >= 2; --shorter) {
        for (const auto cut : {word.size() - shorter, shorter}) {
            const auto begin = word.substr(0, cut);
            const auto end = word.substr(cut);
            const bool prefix = std::find(kPrefixes.begin(), kPrefixes.end(), begin) != kPrefixes.end();
            if ((begin.size() < kShortestPart && !prefix) || end.size() < kShortestPart) {
                continue;
            }
            const auto first = dictionary_(begin);
            const auto second = dictionary_(end);
            if (first && second) {
                return joined(*first, *second);
            }
        }
    }
    return std::nullopt;
}

} // namespace tovik
