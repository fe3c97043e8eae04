// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/SpokenNumbers.h"

#include "Speech/Text/Unicode.h"

#include <algorithm>
#include <array>
#include <span>

namespace tovik {

namespace {

constexpr std::array<std::u16string_view, 20> kOnes{
    u"zero",     u"one",     u"two",     u"three",     u"four",     u"five",    u"six",
    u"seven",    u"eight",   u"nine",    u"ten",       u"eleven",   u"twelve",  u"thirteen",
    u"fourteen", u"fifteen", u"sixteen", u"seventeen", u"eighteen", u"nineteen"};
constexpr std::array<std::u16string_view, 8> kTens{u"twenty", u"thirty",  u"forty",  u"fifty",
                                                   u"sixty",  u"seventy", u"eighty", u"ninety"};
constexpr std::array<std::u16string_view, 20> kOrdinals{
    u"first",     u"second",    u"third",       u"fourth",     u"fifth",      u"sixth",      u"seventh",
    u"eighth",    u"ninth",     u"tenth",       u"eleventh",   u"twelfth",    u"thirteenth", u"fourteenth",
    u"fifteenth", u"sixteenth", u"seventeenth", u"eighteenth", u"nineteenth", u"twentieth"};
constexpr std::array<std::u16string_view, 12> kMonths{u"january",   u"february", u"march",    u"april",
                                                      u"may",       u"june",     u"july",     u"august",
                                                      u"september", u"october",  u"november", u"december"};

using Words = std::span<const std::u16string_view>;

/// The word at place 0 stands for the first value, the others for one step more each.
std::optional<int> valueIn(Words words, std::u16string_view word, int firstValue, int step = 1) {
    const auto found = std::ranges::find(words, word);
    return found == words.end() ? std::nullopt
                                : std::optional(firstValue + static_cast<int>(found - words.begin()) * step);
}

std::u16string alternatives(Words words, int from, int to) {
    std::u16string all;
    for (const auto word :
         words.subspan(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from) + 1)) {
        all.append(all.empty() ? u"" : u"|").append(word);
    }
    return all;
}

std::optional<std::int64_t> scaleOf(std::u16string_view word) {
    if (word == u"thousand") {
        return 1'000;
    }
    if (word == u"million") {
        return 1'000'000;
    }
    if (word == u"billion") {
        return 1'000'000'000;
    }
    return std::nullopt;
}

/// Adds up a number word by word.
class NumberSum {
public:
    void take(std::u16string_view word) {
        if (const auto value = onesValue(word)) {
            add(group_, *value);
        } else if (const auto tens = tensValue(word)) {
            add(group_, *tens);
        } else if (word == u"hundred") {
            group_ = scaledGroup(100);
        } else if (const auto scale = scaleOf(word)) {
            add(total_, scaledGroup(*scale));
            group_ = 0;
        }
    }

    [[nodiscard]] std::optional<std::int64_t> sum() {
        add(total_, group_);
        return overflowed_ ? std::nullopt : std::optional(total_);
    }

private:
    void add(std::int64_t& to, std::int64_t value) {
        overflowed_ = __builtin_add_overflow(to, value, &to) || overflowed_;
    }
    [[nodiscard]] std::int64_t scaledGroup(std::int64_t scale) {
        std::int64_t scaled = 0;
        overflowed_ =
            __builtin_mul_overflow(std::max<std::int64_t>(group_, 1), scale, &scaled) || overflowed_;
        return scaled;
    }

    std::int64_t total_ = 0;
    std::int64_t group_ = 0;
    bool overflowed_ = false;
};

// Runs of number words are found by walking along the text rather than by a pattern: a pattern with a loop
// over words needs memory for every word of a long run and looks at a run again from each of its words.

using IsRunWord = bool (*)(std::u16string_view);

bool isCentWord(std::u16string_view word) {
    return onesValue(word).value_or(0) > 0 || tensValue(word);
}

bool isDollarWord(std::u16string_view word) {
    return isCentWord(word) || word == u"hundred" || scaleOf(word);
}

bool isNumberWord(std::u16string_view word) {
    return isDollarWord(word) || word == u"zero";
}

/// Where the word ends that begins at a position, if it is wanted. All letters from there on that fold to a
/// to z are the word.
std::size_t endOfWord(std::u16string_view text, std::size_t position, IsRunWord isWanted) {
    const auto isLetter = [](char16_t unit) { return unit >= u'a' && unit <= u'z'; };
    std::u16string word;
    while (position < text.size()) {
        const auto length = characterAt(text, position).length;
        const auto folded = caseFolded(text.substr(position, length));
        if (!std::ranges::all_of(folded, isLetter)) {
            break;
        }
        word += folded;
        position += length;
    }
    return isWanted(word) ? position : kNone;
}

/// The first place where "\b" matches and a wanted word begins, from the text's beginning or the end of a
/// word on.
std::size_t nextWord(std::u16string_view text, std::size_t from, IsRunWord isWanted) {
    bool afterWord = from > 0;
    for (auto position = from; position < text.size();) {
        const auto [character, length] = characterAt(text, position);
        if (!isIgnoredAtBoundaries(character)) {
            const bool isWord = isWordCharacter(character);
            if (isWord && !afterWord && endOfWord(text, position, isWanted) != kNone) {
                return position;
            }
            afterWord = isWord;
        }
        position += length;
    }
    return kNone;
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

/// A stretch of a text.
struct TextRange {
    std::size_t begin;
    std::size_t end;
};

/// A run of number words that begins at a given place and is as long as it can be.
struct Run {
    std::size_t words;
    std::size_t end;
    /// Where the last but one word ends.
    std::size_t previousEnd;
};

template <typename Separator>
Run runAt(std::u16string_view text, std::size_t position, IsRunWord isWanted, Separator skipSeparator) {
    Run run{0, position, position};
    auto next = position;
    for (auto end = endOfWord(text, next, isWanted); end != kNone; end = endOfWord(text, next, isWanted)) {
        run = {run.words + 1, end, run.end};
        next = skipSeparator(text, end);
        if (next == end) {
            break;
        }
    }
    return run;
}

/// Where the match of a word ends that begins at the position. It ends where a character of the text ends.
std::size_t endOfMatch(std::u16string_view text, std::size_t position, std::u16string_view foldedWord) {
    std::u16string folded;
    while (folded.size() < foldedWord.size() && position < text.size()) {
        const auto length = characterAt(text, position).length;
        folded += caseFolded(text.substr(position, length));
        position += length;
    }
    return folded == foldedWord ? position : kNone;
}

/// Where a word ends that white space and then the word, with or without a final "s", follow.
std::optional<std::size_t> unitEnd(std::u16string_view text, std::size_t position, std::u16string_view unit) {
    const auto begin = skipWhiteSpace(text, position);
    if (begin == position) {
        return std::nullopt;
    }
    const auto end = endOfMatch(text, begin, unit);
    if (end == kNone) {
        return std::nullopt;
    }
    const auto plural = endOfMatch(text, end, u"s");
    return plural == kNone ? end : plural;
}

struct Cents {
    TextRange words;
    std::size_t end;
};

/// "and fifty cents", behind white space and up to a word boundary.
std::optional<Cents> centsAt(std::u16string_view text, std::size_t position) {
    const auto begin = skipWhiteSpace(text, position);
    const auto andEnd = begin == position ? kNone : endOfMatch(text, begin, u"and");
    if (andEnd == kNone) {
        return std::nullopt;
    }
    const auto words = skipWhiteSpace(text, andEnd);
    const auto run =
        words == andEnd ? Run{0, words, words} : runAt(text, words, isCentWord, skipCurrencySeparator);
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

std::optional<int> onesValue(std::u16string_view word) {
    return valueIn(kOnes, word, 0);
}

std::optional<int> tensValue(std::u16string_view word) {
    return valueIn(kTens, word, 20, 10);
}

std::optional<int> ordinalValue(std::u16string_view word) {
    return word == u"thirtieth" ? 30 : valueIn(kOrdinals, word, 1);
}

std::u16string writtenOrdinal(int value) {
    const bool isTeen = value >= 11 && value <= 13;
    const auto* ending = u"th";
    switch (isTeen ? 0 : value % 10) {
    case 1:
        ending = u"st";
        break;
    case 2:
        ending = u"nd";
        break;
    case 3:
        ending = u"rd";
        break;
    default:
        break;
    }
    return toUtf16(std::to_string(value)) + ending;
}

std::optional<int> monthNumber(std::u16string_view word) {
    return valueIn(kMonths, word, 1);
}

std::u16string monthName(int number) {
    const auto word = kMonths.at(static_cast<std::size_t>(number) - 1);
    return upperCased(word.substr(0, 1)).append(word.substr(1));
}

std::u16string onesWords(int from, int to) {
    return alternatives(kOnes, from, to);
}

std::u16string tensWords(int from, int to) {
    return alternatives(kTens, from / 10 - 2, to / 10 - 2);
}

std::u16string ordinalWords(int from, int to) {
    return alternatives(kOrdinals, from - 1, to - 1);
}

std::u16string monthWords() {
    return alternatives(kMonths, 0, 11);
}

std::optional<std::int64_t> spokenNumber(std::u16string_view words) {
    auto lower = lowerCased(words);
    std::replace(lower.begin(), lower.end(), u'-', u' ');
    NumberSum sum;
    for (const auto word : pieces(lower, u' ')) {
        sum.take(word);
    }
    return sum.sum();
}

std::u16string replaceCurrencyRuns(std::u16string_view text, const CurrencyFormat& format) {
    Rewriter rewriter(text);
    auto start = nextWord(text, 0, isDollarWord);
    while (start != kNone) {
        // The unit can only follow the last word of the whole run, so a run without one is done with.
        const auto run = runAt(text, start, isDollarWord, skipCurrencySeparator);
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
        start = nextWord(text, match.end, isDollarWord);
    }
    return rewriter.finished();
}

std::u16string replaceNumberRuns(std::u16string_view text, const NumberFormat& format) {
    Rewriter rewriter(text);
    auto start = nextWord(text, 0, isNumberWord);
    while (start != kNone) {
        auto run = runAt(text, start, isNumberWord, skipNumberSeparator);
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
        start = nextWord(text, match.end, isNumberWord);
    }
    return rewriter.finished();
}

} // namespace tovik
