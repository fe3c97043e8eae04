// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

struct ps_decoder_s;

namespace tovik {

/// Finds out how the terms of a user's vocabulary are said, which may be names, phrases or abbreviations.
class TermPronouncer {
public:
    /// The phones of a word in lower case; nothing when the dictionary does not have it.
    using Dictionary = std::function<std::optional<std::string>(const std::string& word)>;

    explicit TermPronouncer(Dictionary dictionary);

    /// The likely pronunciations in ARPAbet, with blanks between the phones, the likeliest first. Empty when
    /// the term has no letters that could be said.
    [[nodiscard]] std::vector<std::string> pronounce(std::string_view term) const;

private:
    [[nodiscard]] std::vector<std::string> pronounceWord(const std::string& word) const;
    [[nodiscard]] std::optional<std::string> compound(const std::string& word) const;

    const Dictionary dictionary_;
};

/// The words and phrases that a decoder was taught for the user. Each is one word to the decoder, also a
/// phrase and also a word that the decoder knew already: so it gets a weight of its own, and comes out in the
/// user's spelling.
class ContextualVocabulary {
public:
    /// Further terms are left out: each one costs time in every frame.
    static constexpr std::size_t mostTerms = 500;

    /// Teaches the terms that were not taught yet, between utterances. Terms that cannot be said, such as
    /// those in other scripts, are passed over. False when the library refuses; it says why.
    [[nodiscard]] bool teach(ps_decoder_s* decoder, const std::vector<std::string>& terms);

    /// Whether exactly these were taught.
    [[nodiscard]] bool isTaught(const std::vector<std::string>& terms) const;

    /// Whether these can be reached by teaching some more; otherwise it takes a decoder that was taught none.
    [[nodiscard]] bool canBeExtendedTo(const std::vector<std::string>& terms) const;

    /// The words of a decoder, with the terms in the user's spelling.
    [[nodiscard]] std::string spelled(const std::string& words) const;

private:
    struct NewWord {
        std::string name;
        std::string phones;
        bool isVariant = false;
    };

    [[nodiscard]] std::vector<NewWord> newWords(ps_decoder_s* decoder, const std::vector<std::string>& terms);
    [[nodiscard]] bool add(ps_decoder_s* decoder, const std::vector<NewWord>& words);

    std::set<std::string> taught_;
    std::map<std::string, std::string> termOfWord_;
    std::size_t classes_ = 0;
};

} // namespace tovik
