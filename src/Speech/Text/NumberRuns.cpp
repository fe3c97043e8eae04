// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/NumberRuns.h"

#include "Speech/Text/CharacterClasses.h"
#include "Speech/Text/FoldedText.h"
#include "Speech/Text/KnownWords.h"

namespace tovik {

namespace {

const std::u16string kOneToNineteenWords = u"one|two|three|four|five|six|seven|eight|nine|ten|eleven|twelve|"
                                           u"thirteen|fourteen|fifteen|sixteen|seventeen|"
                                           u"eighteen|nineteen";
const std::u16string kTensWords = u"twenty|thirty|forty|fifty|sixty|seventy|eighty|ninety";
const std::u16string kScaleWords = u"hundred|thousand|million|billion";

const KnownWords& centWords() {
    static const KnownWords words(kOneToNineteenWords + u"|" + kTensWords);
    return words;
}

const KnownWords& dollarWords() {
    static const KnownWords words(kOneToNineteenWords + u"|" + kTensWords + u"|" + kScaleWords);
    return words;
}

const KnownWords& numberWords() {
    static const KnownWords words(u"zero|" + kOneToNineteenWords + u"|" + kTensWords + u"|" + kScaleWords);
    return words;
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
Run runAt(std::u16string_view text, std::size_t position, const KnownWords& words, Separator skipSeparator) {
    Run run{0, position, position};
    auto next = position;
    for (auto end = words.endAt(text, next); end != KnownWords::npos; end = words.endAt(text, next)) {
        run = {run.words + 1, end, run.end};
        next = skipSeparator(text, end);
        if (next == end) {
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
        words == andEnd ? Run{0, words, words} : runAt(text, words, centWords(), skipCurrencySeparator);
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
    [[nodiscard]] std::u16string finished() {
        result_.reserve(result_.size() + text_.size() - copied_);
        return result_.append(text_, copied_);
    }

private:
    std::u16string_view text_;
    std::u16string result_;
    std::size_t copied_ = 0;
};

} // namespace

std::u16string replaceCurrencyRuns(std::u16string_view text, const CurrencyFormat& format) {
    Rewriter rewriter(text);
    auto start = dollarWords().nextStart(text, 0);
    while (start != KnownWords::npos) {
        // The unit can only follow the last word of the whole run, so a run without one is done with.
        const auto run = runAt(text, start, dollarWords(), skipCurrencySeparator);
        TextRange match{start, run.end};
        const auto unit = run.words < 2 ? std::nullopt : unitEnd(text, run.end, u"dollar");
        const auto cents = unit ? centsAt(text, *unit) : std::nullopt;
        if (cents || (unit && isWordBoundary(text, *unit))) {
            match.end = cents ? cents->end : *unit;
            const auto centsPart = cents ? std::optional(rangeOf(text, cents->words)) : std::nullopt;
            if (const auto written = format(rangeOf(text, {start, run.end}), centsPart)) {
                rewriter.replace(match, *written);
            }
        }
        start = dollarWords().nextStart(text, match.end);
    }
    return rewriter.finished();
}

std::u16string replaceNumberRuns(std::u16string_view text, const NumberFormat& format) {
    Rewriter rewriter(text);
    auto start = numberWords().nextStart(text, 0);
    while (start != KnownWords::npos) {
        auto run = runAt(text, start, numberWords(), skipNumberSeparator);
        if (run.words > 1 && !isWordBoundary(text, run.end)) {
            // The last word goes on as something else; the words before it still stand for themselves.
            run = {run.words - 1, run.previousEnd, run.previousEnd};
        }
        const TextRange match{start, run.end};
        const bool followsDollarSign = start > 0 && text[start - 1] == u'$';
        if (run.words > 1 && !followsDollarSign) {
            if (const auto written = format(rangeOf(text, match))) {
                rewriter.replace(match, *written);
            }
        }
        start = numberWords().nextStart(text, match.end);
    }
    return rewriter.finished();
}

} // namespace tovik
