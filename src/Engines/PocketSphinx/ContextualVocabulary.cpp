// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/PocketSphinx/ContextualVocabulary.h"

#include "Engines/PocketSphinx/TermPronouncer.h"

#include <pocketsphinx.h>
#include <sphinxbase/ckd_alloc.h>
#include <sphinxbase/err.h>
#include <sphinxbase/ngram_model.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <numeric>
#include <optional>
#include <utility>

namespace tovik {

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
        auto& class_ = classes[term % classes.size()];
        class_.names.push_back(const_cast<char*>(word.name.c_str()));
        class_.weights.push_back(word.isVariant ? kNoWeight : 1);
    }
    for (auto& class_ : classes) {
        const auto sum = std::accumulate(class_.weights.begin(), class_.weights.end(), 0.0F);
        for (auto& weight : class_.weights) {
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
