// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/TranscriptionFormatter.h"

#include "Speech/Text/SpokenNumbers.h"
#include "Speech/Text/Unicode.h"

#include <unicode/locid.h>
#include <unicode/numberformatter.h>
#include <unicode/regex.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

namespace tovik {

namespace {

// Runs of white space are written as "(?>[\s]+)", which matches what "\s+" does, for nothing that may follow
// begins with white space. ICU repeats a set in brackets without remembering every character, and never tries
// a shorter run, so that a megabyte of spaces needs neither stack nor time. No other part of a pattern
// repeats.
const std::u16string kSpaces = u"(?>[\\s]+)";
const std::u16string kOrdinalNouns =
    u"place|floor|round|quarter|time|step|try|attempt|item|chapter|section|grade|inning|lap|seed|draft|pick|"
    u"rank|position";

icu::UnicodeString aliasOf(std::u16string_view text) {
    return {false, text.data(), static_cast<std::int32_t>(text.size())};
}

std::u16string singleWordCurrencyExpression() {
    return u"\\b(" + onesWords(1, 19) + u"|" + tensWords(20, 90) + u")" + kSpaces + u"dollars?\\b";
}

std::u16string dateExpression(const std::u16string& betweenMonthAndDay) {
    auto days = ordinalWords(1, 20);
    for (int day = 1; day <= 9; ++day) {
        days += u"|twenty[\\s-]" + ordinalWords(day, day);
    }
    days += u"|thirtieth|thirty[\\s-]first";
    const auto year = u"(?:twenty|nineteen)(?:" + kSpaces + u"|-)?(?:oh" + kSpaces + u")?(?:" +
                      onesWords(1, 19) + u"|" + tensWords(20, 90) + u")(?:" + kSpaces + u"(?:" +
                      onesWords(1, 9) + u"))?";
    return u"\\b(" + monthWords() + u")" + betweenMonthAndDay + u"(" + days + u")(?:" + kSpaces + u"(?:of" +
           kSpaces + u")?(" + year + u"))?\\b";
}

std::u16string timeExpression() {
    auto minutes = u"oh" + kSpaces + u"(?:" + onesWords(1, 9) + u")|" + onesWords(10, 19);
    for (int tens = 20; tens <= 50; tens += 10) {
        const auto word = tensWords(tens, tens);
        minutes += u"|" + word;
        for (int unit = 1; unit <= 9; ++unit) {
            minutes += u"|" + word + u"[\\s-]" + onesWords(unit, unit);
        }
    }
    return u"\\b(" + onesWords(1, 12) + u")" + kSpaces + u"(" + minutes + u")" + kSpaces +
           u"(AM|PM|a\\.m\\.|p\\.m\\.)\\b";
}

std::u16string wholeHourExpression() {
    return u"\\b(" + onesWords(1, 12) + u")" + kSpaces + u"(AM|PM|a\\.m\\.|p\\.m\\.|o'clock)\\b";
}

std::u16string ordinalExpression() {
    return u"\\b(?:the" + kSpaces + u")(" + ordinalWords(1, 20) + u"|thirtieth)(?=" + kSpaces + u"(?:" +
           kOrdinalNouns + u")\\b)";
}

icu::Locale localeOf(std::string_view identifier) {
    // Codeset and modifier say nothing about numbers.
    const auto plain = std::string(identifier.substr(0, identifier.find_first_of(".@")));
    if (plain.empty() || plain == "C" || plain == "POSIX" || plain == "en_US_POSIX") {
        return icu::Locale::getUS();
    }
    auto locale = icu::Locale::createCanonical(plain.c_str());
    const std::string_view language = locale.getLanguage();
    const auto isLetter = [](char c) { return c >= 'a' && c <= 'z'; };
    if (locale.isBogus() || language.empty() || !std::all_of(language.begin(), language.end(), isLetter)) {
        return icu::Locale::getUS();
    }
    return locale;
}

std::u16string withSpacesForHyphens(std::u16string_view text) {
    auto result = lowerCased(text);
    std::replace(result.begin(), result.end(), u'-', u' ');
    return result;
}

std::u16string decimal(std::int64_t number) {
    return toUtf16(std::to_string(number));
}

std::u16string twoDigits(std::int64_t number) {
    return (number < 10 ? u"0" : u"") + decimal(number);
}

/// "AM" or "PM".
std::u16string periodOf(std::u16string_view spoken) {
    auto period = upperCased(spoken);
    std::erase(period, u'.');
    return period;
}

/// Nothing when the words cannot be a number that a year is made of.
std::int64_t inCentury(std::int64_t century, std::int64_t rest) {
    std::int64_t year = 0;
    return __builtin_add_overflow(century * 100, rest, &year) ? 0 : year;
}

std::int64_t minutesOf(std::u16string_view spoken) {
    constexpr std::u16string_view kOh = u"oh ";
    const auto words = withSpacesForHyphens(spoken);
    if (words.starts_with(kOh)) {
        return onesValue(std::u16string_view(words).substr(kOh.size())).value_or(0);
    }
    return TranscriptionFormatter::parseSpokenNumber(words);
}

/// The words from number `first` on, one space between each two.
std::u16string wordsFrom(const std::vector<std::u16string_view>& words, std::size_t first) {
    std::u16string rest;
    for (auto i = first; i < words.size(); ++i) {
        rest.append(i == first ? u"" : u" ").append(words[i]);
    }
    return rest;
}

} // namespace

/// One place where a pattern matched.
class TranscriptionFormatter::Match {
public:
    Match(const icu::RegexMatcher& matcher, std::u16string_view text) : matcher_(matcher), text_(text) {}

    /// Empty when the group did not take part; group 0 is the whole match.
    [[nodiscard]] std::u16string_view group(int group) const {
        UErrorCode status = U_ZERO_ERROR;
        const auto start = matcher_.start(group, status);
        const auto end = matcher_.end(group, status);
        return start < 0
                   ? std::u16string_view()
                   : text_.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start));
    }

private:
    const icu::RegexMatcher& matcher_;
    std::u16string_view text_;
};

/// A regular expression in ICU syntax, case-insensitive, compiled once. Any thread.
class TranscriptionFormatter::Pattern {
public:
    Pattern(const char* name, const std::u16string& expression) : step(name) {
        UErrorCode status = U_ZERO_ERROR;
        pattern_.reset(icu::RegexPattern::compile(aliasOf(expression), UREGEX_CASE_INSENSITIVE, status));
        if (U_FAILURE(status)) {
            throw std::logic_error(std::string("invalid pattern: ") + name);
        }
    }

    /// Replaces all matches that the text has as it stands. On an error the text is as before.
    UErrorCode replaceAll(std::u16string& text, const Replacement& replacement) const {
        UErrorCode status = U_ZERO_ERROR;
        const auto alias = aliasOf(text);
        const std::unique_ptr<icu::RegexMatcher> matcher(pattern_->matcher(alias, status));
        std::u16string result;
        std::size_t copied = 0;
        while (U_SUCCESS(status) && matcher->find(status)) {
            if (const auto inserted = replacement(Match(*matcher, text))) {
                result.append(text, copied, static_cast<std::size_t>(matcher->start(status)) - copied)
                    .append(*inserted);
                copied = static_cast<std::size_t>(matcher->end(status));
            }
        }
        if (U_SUCCESS(status) && copied > 0) {
            text = result.append(text, copied);
        }
        return status;
    }

    /// For the log.
    const char* const step;

private:
    std::unique_ptr<icu::RegexPattern> pattern_;
};

TranscriptionFormatter::TranscriptionFormatter(const UserDefaults& defaults, SystemLog& log,
                                               std::string_view locale)
    : defaults_(defaults),
      log_(log),
      locale_(locale) {}

bool TranscriptionFormatter::isEnabled() const {
    return defaults_.boolean(enabledKey).value_or(true);
}

std::string TranscriptionFormatter::apply(std::string_view transcript) const {
    auto text = toUtf16(transcript);
    apply(text);
    return toUtf8(text);
}

void TranscriptionFormatter::apply(std::u16string& transcript) const {
    if (transcript.empty() || !isEnabled()) {
        return;
    }
    formatCurrency(transcript);
    formatDates(transcript);
    formatTimes(transcript);
    formatOrdinals(transcript);
    formatSpokenNumbers(transcript);
}

std::int64_t TranscriptionFormatter::parseSpokenNumber(std::u16string_view words) {
    return spokenNumber(words).value_or(0);
}

int TranscriptionFormatter::parseDayOrdinal(std::u16string_view words) {
    const auto day = withSpacesForHyphens(words);
    if (const auto whole = ordinalValue(day)) {
        return *whole;
    }
    const auto parts = pieces(day, u' ');
    if (parts.size() != 2) {
        return 0;
    }
    const auto tens = tensValue(parts[0]);
    const auto ordinal = ordinalValue(parts[1]);
    return tens && ordinal ? *tens + *ordinal : 0;
}

std::int64_t TranscriptionFormatter::parseSpokenYear(std::u16string_view words) {
    const auto year = withSpacesForHyphens(words);
    const auto parts = pieces(year, u' ');
    if (parts.size() < 2) {
        return parseSpokenNumber(year);
    }
    const auto tens = tensValue(parts[0]);
    const auto century = onesValue(parts[0]).value_or(tens.value_or(0));
    if (century == 19 || century == 20) {
        return inCentury(century, parseSpokenNumber(wordsFrom(parts, 1)));
    }
    if (!tens) {
        return parseSpokenNumber(year);
    }
    const auto afterOh = parts[1] == u"oh" ? onesValue(wordsFrom(parts, 2)) : std::nullopt;
    return inCentury(*tens, afterOh ? *afterOh : parseSpokenNumber(wordsFrom(parts, 1)));
}

void TranscriptionFormatter::formatCurrency(std::u16string& text) const {
    text = replaceCurrencyRuns(
        text,
        [](std::u16string_view dollarWords,
           std::optional<std::u16string_view> centWords) -> std::optional<std::u16string> {
            const auto dollars = spokenNumber(dollarWords);
            const auto cents = spokenNumber(centWords.value_or(u""));
            if (!dollars || !cents) {
                return std::nullopt;
            }
            return u"$" + decimal(*dollars) + (centWords ? u"." + twoDigits(*cents) : u"");
        });
    static const Pattern singleWord("formatCurrency", singleWordCurrencyExpression());
    replaceAll(text, singleWord, [](const Match& match) -> std::optional<std::u16string> {
        const auto word = lowerCased(match.group(1));
        const auto ones = onesValue(word);
        const auto value = ones ? ones : tensValue(word);
        return value ? std::optional(u"$" + decimal(*value)) : std::nullopt;
    });
}

void TranscriptionFormatter::formatDates(std::u16string& text) const {
    static const Pattern withThe("formatDates", dateExpression(kSpaces + u"the" + kSpaces));
    static const Pattern without("formatDates", dateExpression(kSpaces));
    replaceDates(text, withThe, 1, 2, 3);
    replaceDates(text, without, 1, 2, 3);
}

void TranscriptionFormatter::replaceDates(std::u16string& text, const Pattern& pattern, int monthGroup,
                                          int dayGroup, int yearGroup) const {
    replaceAll(text, pattern, [=](const Match& match) -> std::optional<std::u16string> {
        constexpr int kLastDay = 31;
        const auto month = monthNumber(lowerCased(match.group(monthGroup)));
        const auto day = parseDayOrdinal(match.group(dayGroup));
        if (!month || day < 1 || day > kLastDay) {
            return std::nullopt;
        }
        auto date = monthName(*month) + u" " + decimal(day);
        if (const auto year = match.group(yearGroup); !year.empty()) {
            date += u", " + decimal(parseSpokenYear(year));
        }
        return date;
    });
}

void TranscriptionFormatter::formatTimes(std::u16string& text) const {
    static const Pattern times("formatTimes", timeExpression());
    replaceAll(text, times, [](const Match& match) -> std::optional<std::u16string> {
        const auto hour = onesValue(lowerCased(match.group(1)));
        if (!hour) {
            return std::nullopt;
        }
        return decimal(*hour) + u":" + twoDigits(minutesOf(match.group(2))) + u" " + periodOf(match.group(3));
    });
    static const Pattern wholeHours("formatTimes", wholeHourExpression());
    replaceAll(text, wholeHours, [](const Match& match) -> std::optional<std::u16string> {
        const auto hour = onesValue(lowerCased(match.group(1)));
        if (!hour) {
            return std::nullopt;
        }
        const bool isClock = lowerCased(match.group(2)).find(u"o'clock") != std::u16string::npos;
        return decimal(*hour) + (isClock ? u" o'clock" : u":00 " + periodOf(match.group(2)));
    });
}

void TranscriptionFormatter::formatOrdinals(std::u16string& text) const {
    static const Pattern ordinals("formatOrdinals", ordinalExpression());
    replaceAll(text, ordinals, [](const Match& match) -> std::optional<std::u16string> {
        // Matching goes by folded letters, and so must finding out which of the words it was.
        const auto value = ordinalValue(caseFolded(match.group(1)));
        return value ? std::optional(u"the " + writtenOrdinal(*value)) : std::nullopt;
    });
}

void TranscriptionFormatter::formatSpokenNumbers(std::u16string& text) const {
    const auto formatter = icu::number::NumberFormatter::withLocale(localeOf(locale_));
    text = replaceNumberRuns(text, [&](std::u16string_view words) -> std::optional<std::u16string> {
        const auto value = spokenNumber(words);
        if (!value || *value < 1) {
            return std::nullopt;
        }
        UErrorCode status = U_ZERO_ERROR;
        const auto written = formatter.formatInt(*value, status).toString(status);
        return U_FAILURE(status) ? std::nullopt
                                 : std::optional(std::u16string(written.getBuffer(),
                                                                static_cast<std::size_t>(written.length())));
    });
}

void TranscriptionFormatter::replaceAll(std::u16string& text, const Pattern& pattern,
                                        const Replacement& replacement) const {
    if (const auto status = pattern.replaceAll(text, replacement); U_FAILURE(status)) {
        log_.printLine("[TovikVoice] Text rule " + std::string(pattern.step) + " gave up (" +
                       u_errorName(status) + "); the text stays as it was");
    }
}

} // namespace tovik
