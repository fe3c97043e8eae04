// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/PocketSphinx/ContextualVocabulary.h"

#include "Linux/PocketSphinx/LibraryCall.h"
#include "Linux/PocketSphinx/PocketSphinxError.h"
#include "Linux/PocketSphinx/TermPronouncer.h"

#include <pocketsphinx.h>
#include <sphinxbase/ckd_alloc.h>
#include <sphinxbase/ngram_model.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace tovik {

namespace {

/// How much likelier a term is than a word of which the language model knows nothing. Measured with
/// tools/measure-recognition: less misses terms that were said, more hears them in what was not.
constexpr float kTermWeight = 10;

/// The words of the decoder's one language model, which stands inside a set.
ngram_model_t* languageModel(ps_decoder_t* decoder) {
    auto* const set = ps_get_lm(decoder, ps_get_search(decoder));
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

Result<void> ContextualVocabulary::teach(ps_decoder_s* decoder, const std::vector<std::string>& terms) {
    const auto words = newWords(decoder, terms);
    return words.empty() ? Result<void>() : add(decoder, words);
}

std::vector<ContextualVocabulary::NewWord>
ContextualVocabulary::newWords(ps_decoder_s* decoder, const std::vector<std::string>& terms) {
    const TermPronouncer pronouncer([decoder](const std::string& word) { return lookUp(decoder, word); });
    std::vector<NewWord> words;
    for (const auto& term : terms) {
        if (wordOfTerm_.contains(term) || wordOfTerm_.size() >= mostTerms) {
            continue;
        }
        const auto ways = pronouncer.pronounce(term);
        auto word = ways.empty() ? std::string() : "term#" + std::to_string(wordOfTerm_.size());
        for (std::size_t way = 0; way < ways.size(); ++way) {
            const auto variant = way == 0 ? word : word + "(" + std::to_string(way + 1) + ")";
            words.push_back({variant, ways[way], way > 0});
        }
        if (!word.empty()) {
            termOfWord_.emplace(word, term);
        }
        wordOfTerm_.emplace(term, std::move(word));
    }
    return words;
}

Result<void> ContextualVocabulary::add(ps_decoder_s* decoder, const std::vector<NewWord>& words) {
    LibraryCall library;
    bool added = true;
    const bool returned = library([&] {
        auto* const model = languageModel(decoder);
        for (const auto& word : words) {
            const bool last = &word == &words.back();
            // In this order: a word that the model has keeps its weight when the decoder gets to know it.
            if (model != nullptr && !word.isVariant) {
                added = ngram_model_add_word(model, word.word.c_str(), kTermWeight) >= 0 && added;
            }
            // Only the last one makes the decoder build its search anew, which takes a while.
            added = ps_add_word(decoder, word.word.c_str(), word.phones.c_str(), last ? TRUE : FALSE) >= 0 &&
                    added;
        }
    });
    if (!returned || !added) {
        return pocketSphinxError(PocketSphinxCode::failed,
                                 "The vocabulary could not be used: " + library.complaintsLine());
    }
    return {};
}

bool ContextualVocabulary::hasOthersThan(const std::vector<std::string>& terms) const {
    return std::any_of(wordOfTerm_.begin(), wordOfTerm_.end(), [&](const auto& taught) {
        return std::find(terms.begin(), terms.end(), taught.first) == terms.end();
    });
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
