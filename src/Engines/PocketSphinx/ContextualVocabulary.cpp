// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/PocketSphinx/ContextualVocabulary.h"

#include "Engines/Host/DecoderHost.h"
#include "Platform/AsciiCase.h"

#include <flite/flite.h>
#include <pocketsphinx.h>
#include <sphinxbase/ckd_alloc.h>
#include <sphinxbase/err.h>
#include <sphinxbase/ngram_model.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <numeric>
#include <utility>

// The library's headers leave it to the program to declare the lexicons that it links, in the form that
// flite_add_lang() takes.
extern "C" cst_lexicon* cmulex_init();

namespace tovik {

// ------------------------------------------------------------------------ how terms are said

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

/// Flite's phone as the recognizer names it, which knows no stress, and so no vowel of unstressed syllables.
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
/// were learned from the dictionary of which the recognizer's is a later version. A letter is its name.
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

// ------------------------------------------------------------------ what the decoder is taught

namespace {

/// A term is as likely as one of these words, where that one is likely. They are names, as most terms are,
/// and the likeliest of those that mostly stand alone. When there are more terms than names they share.
constexpr std::array<const char*, 20> kLikeWords{"america", "california", "washington", "john",  "london",
                                                 "england", "texas",      "google",     "david", "michael",
                                                 "france",  "george",     "russia",     "china", "jack",
                                                 "joe",     "james",      "tom",        "mike",  "paris"};
/// The library has room for 128 and every one makes the search a little slower.
constexpr std::size_t kMostClasses = 48;
/// Further ways to say a term are looked up under its first one: they take up no weight.
constexpr float kNoWeight = 1e-6F;

/// The decoder's one search with a language model. Asking for the name of the present search would be
/// simpler, but that loses a little memory each time.
ngram_model_t* languageModelSet(ps_decoder_t* decoder) {
    for (auto* search = ps_search_iter(decoder); search != nullptr; search = ps_search_iter_next(search)) {
        if (auto* const set = ps_get_lm(decoder, ps_search_iter_val(search))) {
            ps_search_iter_free(search);
            return set;
        }
    }
    return nullptr;
}

/// The words of the decoder's one language model, which stands inside a set.
ngram_model_t* languageModel(ps_decoder_t* decoder) {
    auto* const set = languageModelSet(decoder);
    if (set == nullptr) {
        return nullptr;
    }
    auto* const iterator = ngram_model_set_iter(set);
    if (iterator == nullptr) {
        return nullptr;
    }
    const char* name = nullptr;
    auto* const model = ngram_model_set_iter_model(iterator, &name);
    ngram_model_set_iter_free(iterator);
    return model;
}

std::optional<std::string> lookUp(ps_decoder_t* decoder, const std::string& word) {
    char* const phones = ps_lookup_word(decoder, word.c_str());
    if (phones == nullptr) {
        return std::nullopt;
    }
    std::string result(phones);
    ckd_free(phones);
    return result;
}

} // namespace

bool ContextualVocabulary::teach(ps_decoder_s* decoder, const std::vector<std::string>& terms) {
    const auto words = newWords(decoder, terms);
    return words.empty() || add(decoder, words);
}

std::vector<ContextualVocabulary::NewWord>
ContextualVocabulary::newWords(ps_decoder_s* decoder, const std::vector<std::string>& terms) {
    const TermPronouncer pronouncer([decoder](const std::string& word) { return lookUp(decoder, word); });
    std::vector<NewWord> words;
    for (const auto& term : std::set(terms.begin(), terms.end())) {
        if (termOfWord_.size() == mostTerms) {
            break;
        }
        if (taught_.contains(term)) {
            continue;
        }
        const auto ways = pronouncer.pronounce(term);
        if (ways.empty()) {
            continue;
        }
        const auto word = "term#" + std::to_string(termOfWord_.size());
        for (std::size_t way = 0; way < ways.size(); ++way) {
            words.push_back(
                {way == 0 ? word : word + "(" + std::to_string(way + 1) + ")", ways[way], way > 0});
        }
        termOfWord_.emplace(word, term);
    }
    taught_ = {terms.begin(), terms.end()};
    return words;
}

bool ContextualVocabulary::add(ps_decoder_s* decoder, const std::vector<NewWord>& words) {
    // Words that are simply added to this kind of language model make the library read beyond its arrays.
    // Words of a class that is named like a word of the model do not.
    struct Class {
        std::vector<char*> names;
        std::vector<float> weights;
    };
    std::array<Class, kLikeWords.size()> classes;
    // Terms that come later begin where the earlier ones ended, so that all classes get their share.
    std::size_t term = termOfWord_.size();
    for (const auto& word : words) {
        term += word.isVariant ? 0 : 1;
        auto& wordClass = classes[term % classes.size()];
        wordClass.names.push_back(const_cast<char*>(word.name.c_str()));
        wordClass.weights.push_back(word.isVariant ? kNoWeight : 1);
    }
    for (auto& wordClass : classes) {
        const auto sum = std::accumulate(wordClass.weights.begin(), wordClass.weights.end(), 0.0F);
        for (auto& weight : wordClass.weights) {
            weight /= sum;
        }
    }

    auto* const model = languageModel(decoder);
    bool added = model != nullptr;
    for (std::size_t i = 0; i < classes.size() && added; ++i) {
        const auto count = static_cast<std::int32_t>(classes[i].names.size());
        if (ngram_wid(model, kLikeWords[i]) == ngram_unknown_wid(model)) {
            E_ERROR("The language model has no word for terms\n");
            added = false;
        } else if (count > 0) {
            added = ngram_model_add_class(model, kLikeWords[i], 1, classes[i].names.data(),
                                          classes[i].weights.data(), count) >= 0;
            ++classes_;
        }
    }
    for (const auto& word : words) {
        // Only the last one makes the decoder build its search anew, which takes a while.
        const bool isLast = &word == &words.back();
        added =
            added && ps_add_word(decoder, word.name.c_str(), word.phones.c_str(), isLast ? TRUE : FALSE) >= 0;
    }
    return added;
}

bool ContextualVocabulary::isTaught(const std::vector<std::string>& terms) const {
    return taught_ == std::set<std::string>(terms.begin(), terms.end());
}

bool ContextualVocabulary::canBeExtendedTo(const std::vector<std::string>& terms) const {
    const std::set<std::string> wanted(terms.begin(), terms.end());
    return std::includes(wanted.begin(), wanted.end(), taught_.begin(), taught_.end()) &&
           classes_ + kLikeWords.size() <= kMostClasses;
}

std::string ContextualVocabulary::spelled(const std::string& words) const {
    std::string text;
    for (std::size_t begin = 0; begin <= words.size();) {
        const auto end = std::min(words.find(' ', begin), words.size());
        const auto word = words.substr(begin, end - begin);
        const auto term = termOfWord_.find(word);
        text += (begin == 0 ? "" : " ") + (term == termOfWord_.end() ? word : term->second);
        begin = end + 1;
    }
    return text;
}

} // namespace tovik
