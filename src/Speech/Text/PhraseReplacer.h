// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// Replaces whole phrases, whatever their case, in one pass over the phrases: the longest first (in
/// characters), and each in all of the text that the ones before it have left. Phrases of equal length keep
/// the order in which they are given. A phrase stands between word boundaries. What it does is what the
/// regular expression "\b", the phrase taken literally, "\b" does, case-insensitively.
///
/// Of many phrases, only those that occur in the text cost time.
class PhraseReplacer {
public:
    struct Rule {
        std::u16string phrase;
        /// "$0" is the matched text, "$1" to "$9" are nothing, and a backslash makes the next character
        /// literal; everything else stands for itself.
        std::u16string replacement;
    };

    explicit PhraseReplacer(std::vector<Rule> rules);

    /// By how many UTF-16 units a text may grow.
    static constexpr std::size_t kMostGrowth = 1U << 22U;

    /// False, and the text is as it was: it would have grown by more than kMostGrowth.
    [[nodiscard]] bool apply(std::u16string& text) const;

private:
    /// What a phrase folds to, and the number of its rule.
    struct Entry {
        std::u16string folded;
        std::size_t rule;
    };
    struct Range {
        std::size_t begin;
        std::size_t end;
    };
    /// Where in a text a rule's phrase stands, from left to right.
    struct Matches {
        std::size_t rule;
        std::vector<Range> ranges;
    };
    struct FoldedText;

    /// Those of the first rule, from number `firstRule` on, whose phrase stands in the text; none if none
    /// does.
    [[nodiscard]] Matches firstMatches(const FoldedText& text, std::size_t firstRule) const;
    /// Visits the phrases that a folded text begins with.
    template <typename Visitor>
    void forEachPhraseAt(std::u16string_view folded, Visitor visit) const;

    /// Sorted: the number of a rule is its turn.
    std::vector<Rule> rules_;
    /// Sorted by their folded form.
    std::vector<Entry> entries_;
};

} // namespace tovik
