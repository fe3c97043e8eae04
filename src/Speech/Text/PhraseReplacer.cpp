// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/PhraseReplacer.h"

#include "Speech/Text/Unicode.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace tovik {

namespace {

std::vector<PhraseReplacer::Rule> longestFirst(std::vector<PhraseReplacer::Rule> rules) {
    std::vector<std::pair<std::size_t, PhraseReplacer::Rule>> counted;
    counted.reserve(rules.size());
    for (auto& rule : rules) {
        const auto length = characterCount(rule.phrase);
        counted.emplace_back(length, std::move(rule));
    }
    std::ranges::stable_sort(counted, std::greater(), [](const auto& item) { return item.first; });
    std::ranges::transform(counted, rules.begin(), [](auto& item) { return std::move(item.second); });
    return rules;
}

std::u16string expanded(std::u16string_view replacement, std::u16string_view matched) {
    const auto isDigit = [](char16_t unit) { return unit >= u'0' && unit <= u'9'; };
    std::u16string result;
    for (std::size_t i = 0; i < replacement.size(); ++i) {
        const bool hasNext = i + 1 < replacement.size();
        if (replacement[i] == u'\\' && hasNext) {
            result += replacement[++i];
        } else if (replacement[i] == u'$' && hasNext && isDigit(replacement[i + 1])) {
            result += replacement[++i] == u'0' ? matched : u"";
        } else {
            result += replacement[i];
        }
    }
    return result;
}

} // namespace

/// A text as case-insensitive matching compares it.
struct PhraseReplacer::FoldedText {
    explicit FoldedText(std::u16string_view text) {
        bool afterWord = false;
        for (std::size_t position = 0; position < text.size();) {
            const auto [character, length] = characterAt(text, position);
            auto boundary = kNone;
            if (!isIgnoredAtBoundaries(character)) {
                const bool isWord = isWordCharacter(character);
                boundary = isWord != afterWord ? position : kNone;
                afterWord = isWord;
            }
            boundaries.push_back(boundary);
            folded += caseFolded(text.substr(position, length));
            boundaries.resize(folded.size(), kNone);
            position += length;
        }
        boundaries.push_back(afterWord ? text.size() : kNone);
    }

    std::u16string folded;
    /// For each position of the folded text and its end: where in the text itself that is, if "\b" matches
    /// there; a phrase can neither begin nor end elsewhere, least of all inside a character's folded form.
    std::vector<std::size_t> boundaries;
};

PhraseReplacer::PhraseReplacer(std::vector<Rule> rules) : rules_(longestFirst(std::move(rules))) {
    entries_.reserve(rules_.size());
    for (const auto& rule : rules_) {
        entries_.push_back({caseFolded(rule.phrase), entries_.size()});
    }
    std::ranges::sort(entries_, {}, &Entry::folded);
}

bool PhraseReplacer::apply(std::u16string& text) const {
    const auto mostUnits = text.size() + kMostGrowth;
    auto current = text;
    for (auto matches = firstMatches(FoldedText(current), 0); !matches.ranges.empty();
         matches = firstMatches(FoldedText(current), matches.rule + 1)) {
        std::u16string replaced;
        std::size_t copied = 0;
        for (const auto& [begin, end] : matches.ranges) {
            replaced.append(current, copied, begin - copied);
            replaced += expanded(rules_[matches.rule].replacement, {current.data() + begin, end - begin});
            copied = end;
            if (replaced.size() > mostUnits) {
                return false;
            }
        }
        current = replaced.append(current, copied);
    }
    if (current.size() > mostUnits) {
        return false;
    }
    text = std::move(current);
    return true;
}

PhraseReplacer::Matches PhraseReplacer::firstMatches(const FoldedText& text, std::size_t firstRule) const {
    Matches matches{rules_.size(), {}};
    const auto take = [&](std::size_t rule, Range range) {
        if (range.begin == kNone || range.end == kNone || rule < firstRule || rule > matches.rule) {
            return;
        }
        if (rule < matches.rule) {
            matches = {rule, {}};
        }
        if (matches.ranges.empty() || matches.ranges.back().end <= range.begin) {
            matches.ranges.push_back(range);
        }
    };
    for (std::size_t begin = 0; begin <= text.folded.size(); ++begin) {
        if (text.boundaries[begin] != kNone) {
            forEachPhraseAt(std::u16string_view(text.folded).substr(begin), [&](const Entry& phrase) {
                take(phrase.rule, {text.boundaries[begin], text.boundaries[begin + phrase.folded.size()]});
            });
        }
    }
    return matches;
}

template <typename Visitor>
void PhraseReplacer::forEachPhraseAt(std::u16string_view folded, Visitor visit) const {
    auto begin = entries_.begin();
    auto end = entries_.end();
    // The phrases between them begin as the text does, in their first `length` units.
    for (std::size_t length = 0; begin != end; ++length) {
        for (; begin != end && begin->folded.size() == length; ++begin) {
            visit(*begin);
        }
        if (length == folded.size()) {
            return;
        }
        const auto unit = folded[length];
        begin =
            std::partition_point(begin, end, [=](const Entry& entry) { return entry.folded[length] < unit; });
        end = std::partition_point(begin, end,
                                   [=](const Entry& entry) { return entry.folded[length] == unit; });
    }
}

} // namespace tovik
