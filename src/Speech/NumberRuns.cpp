// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/NumberRuns.h"

#include "Speech/CharacterClasses.h"
#include "Speech/FoldedText.h"
#include "Speech/NumberWords.h"

#include <unordered_set>

namespace tovik {

namespace {

/// The longest number words are "seventeen" and "thousand".
constexpr std::size_t kLongestWord = 9;

/// Which words may stand in a run.
struct WordSet {
    bool zero;
    bool scales;

    [[nodiscard]] bool contains(std::u16string_view word) const {
        static const std::unordered_set<std::u16string_view> kScales{u"hundred", u"thousand", u"million",
                                                                     u"billion"};
        if (const auto ones = onesValue(word)) {
            return zero || *ones > 0;
        }
        return tensValue(word).has_value() || (scales && kScales.contains(word));
    }
};

constexpr WordSet kNumberWords{true, true};
constexpr WordSet kDollarWords{false, true};
constexpr WordSet kCentWords{false, false};

bool isLetter(char16_t unit) {
    return unit >= u'a' && unit <= u'z';
}

/// Where the number word at a position ends; nothing when none is there. Letters may be of either case or
/// any form that folds to them.
std::optional<std::size_t> wordEnd(std::u16string_view text, std::size_t position, WordSet words) {
    std::u16string folded;
    while (position < text.size()) {
        const auto [character, length] = characterAt(text, position);
        const auto before = folded.size();
        appendFolded(folded, character);
        bool isWordPart = folded.size() <= kLongestWord;
        for (auto i = before; i < folded.size(); ++i) {
            isWordPart = isWordPart && isLetter(folded[i]);
        }
        if (!isWordPart) {
            folded.resize(before);
            break;
        }
        position += length;
    }
    if (folded.empty() || !words.contains(folded)) {
        return std::nullopt;
    }
    return position;
}

std::size_t skipWhiteSpace(std::u16string_view text, std::size_t position) {
    while (position < text.size() && isWhiteSpace(text[position])) {
        ++position;
    }
    return position;
}

/// White space, or a single hyphen.
std::size_t skipCurrencySeparator(std::u16string_view text, std::size_t position) {
    if (position < text.size() && text[position] == u'-') {
        return position + 1;
    }
    return skipWhiteSpace(text, position);
}

/// White space and hyphens in any mixture.
std::size_t skipNumberSeparator(std::u16string_view text, std::size_t position) {
    while (position < text.size() && (text[position] == u'-' || isWhiteSpace(text[position]))) {
        ++position;
    }
    return position;
}

/// A run of number words that begins at a given place and is as long as it can be.
struct Run {
    std::size_t words;
    std::size_t end;
    /// Where the last but one word ends.
    std::size_t previousEnd;
};

template <typename Separator>
Run runAt(std::u16string_view text, std::size_t position, WordSet words, Separator skipSeparator) {
    Run run{0, position, position};
    auto next = position;
    while (const auto end = wordEnd(text, next, words)) {
        run = {run.words + 1, *end, run.end};
        next = skipSeparator(text, *end);
        if (next == *end) {
            break;
        }
    }
    return run;
}

/// Where a word ends that white space and then the word, with or without a final "s", follow.
std::optional<std::size_t> unitEnd(std::u16string_view text, std::size_t position, std::u16string_view unit) {
    const auto begin = skipWhiteSpace(text, position);
    if (begin == position) {
        return std::nullopt;
    }
    const auto end = endOfFoldedMatch(text, begin, unit);
    if (end == std::u16string_view::npos) {
        return std::nullopt;
    }
    const auto plural = endOfFoldedMatch(text, end, u"s");
    return plural == std::u16string_view::npos ? end : plural;
}

struct Cents {
    TextRange words;
    std::size_t end;
};

/// "and fifty cents", behind white space and up to a word boundary.
std::optional<Cents> centsAt(std::u16string_view text, std::size_t position) {
    const auto begin = skipWhiteSpace(text, position);
    const auto andEnd = begin == position ? std::u16string_view::npos : endOfFoldedMatch(text, begin, u"and");
    if (andEnd == std::u16string_view::npos) {
        return std::nullopt;
    }
    const auto words = skipWhiteSpace(text, andEnd);
    const auto run =
        words == andEnd ? Run{0, words, words} : runAt(text, words, kCentWords, skipCurrencySeparator);
    const auto end = run.words == 0 ? std::nullopt : unitEnd(text, run.end, u"cent");
    if (!end || !isWordBoundary(text, *end)) {
        return std::nullopt;
    }
    return Cents{{words, run.end}, *end};
}

std::u16string_view rangeOf(std::u16string_view text, TextRange range) {
    return text.substr(range.begin, range.end - range.begin);
}

/// Copies a text with some stretches replaced.
class Rewriter {
public:
    explicit Rewriter(std::u16string_view text) : text_(text) {}

    void replace(TextRange range, std::u16string_view with) {
        result_.append(text_, copied_, range.begin - copied_).append(with);
        copied_ = range.end;
    }
    [[nodiscard]] std::u16string finished() { return result_.append(text_, copied_); }

private:
    std::u16string_view text_;
    std::u16string result_;
    std::size_t copied_ = 0;
};

std::size_t afterCharacterAt(std::u16string_view text, std::size_t position) {
    return position + characterAt(text, position).length;
}

} // namespace

std::u16string replaceCurrencyRuns(std::u16string_view text, const CurrencyFormat& format) {
    Rewriter rewriter(text);
    for (std::size_t position = 0; position < text.size();) {
        const auto firstEnd = wordEnd(text, position, kDollarWords);
        if (!firstEnd || !isWordBoundary(text, position)) {
            position = afterCharacterAt(text, position);
            continue;
        }
        // The unit can only follow the last word of the whole run, so a run without one is done with.
        const auto run = runAt(text, position, kDollarWords, skipCurrencySeparator);
        const auto unit = run.words < 2 ? std::nullopt : unitEnd(text, run.end, u"dollar");
        if (!unit) {
            position = run.end;
            continue;
        }
        const auto cents = centsAt(text, *unit);
        if (!cents && !isWordBoundary(text, *unit)) {
            position = run.end;
            continue;
        }
        const TextRange match{position, cents ? cents->end : *unit};
        const auto centWords = cents ? std::optional(rangeOf(text, cents->words)) : std::nullopt;
        if (const auto written = format(rangeOf(text, {position, run.end}), centWords)) {
            rewriter.replace(match, *written);
        }
        position = match.end;
    }
    return rewriter.finished();
}

std::u16string replaceNumberRuns(std::u16string_view text, const NumberFormat& format) {
    Rewriter rewriter(text);
    for (std::size_t position = 0; position < text.size();) {
        const auto firstEnd = wordEnd(text, position, kNumberWords);
        if (!firstEnd || !isWordBoundary(text, position)) {
            position = afterCharacterAt(text, position);
            continue;
        }
        auto run = runAt(text, position, kNumberWords, skipNumberSeparator);
        if (!isWordBoundary(text, run.end)) {
            // The last word goes on as something else; the words before it still stand for themselves.
            run = {run.words - 1, run.previousEnd, run.previousEnd};
        }
        if (run.words < 2) {
            position = *firstEnd;
            continue;
        }
        const TextRange match{position, run.end};
        const bool followsDollarSign = position > 0 && text[position - 1] == u'$';
        const auto written = followsDollarSign ? std::nullopt : format(rangeOf(text, match));
        if (written) {
            rewriter.replace(match, *written);
        }
        position = match.end;
    }
    return rewriter.finished();
}

} // namespace tovik
