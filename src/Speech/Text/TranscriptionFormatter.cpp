// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/TranscriptionFormatter.h"

#include "Speech/Text/CharacterClasses.h"
#include "Speech/Text/FoldedText.h"
#include "Speech/Text/NumberRuns.h"
#include "Speech/Text/NumberWords.h"
#include "Speech/Text/TextFault.h"
#include "Speech/Text/Utf16.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace tovik {

namespace {

// Runs of white space are written as "(?>[\s]+)", which matches what "\s+" does, for nothing that may follow
// begins with white space. ICU repeats a set in brackets without remembering every character, and never tries
// a shorter run, so that a megabyte of spaces needs neither stack nor time.

constexpr std::u16string_view kSpaces = u"(?>[\\s]+)";
constexpr std::u16string_view kDigitWords = u"one|two|three|four|five|six|seven|eight|nine";
constexpr std::u16string_view kTeenWords =
    u"ten|eleven|twelve|thirteen|fourteen|fifteen|sixteen|seventeen|eighteen|nineteen";
constexpr std::u16string_view kTenWords = u"twenty|thirty|forty|fifty|sixty|seventy|eighty|ninety";
constexpr std::u16string_view kHourWords = u"one|two|three|four|five|six|seven|eight|nine|ten|eleven|twelve";
constexpr std::u16string_view kMonthWords =
    u"january|february|march|april|may|june|july|august|september|october|november|december";
constexpr std::u16string_view kOrdinalWords =
    u"first|second|third|fourth|fifth|sixth|seventh|eighth|ninth|tenth|eleventh|twelfth|thirteenth|"
    u"fourteenth|"
    u"fifteenth|sixteenth|seventeenth|eighteenth|nineteenth|twentieth|thirtieth";
constexpr std::u16string_view kOrdinalNouns =
    u"place|floor|round|quarter|time|step|try|attempt|item|chapter|section|grade|inning|lap|seed|draft|pick|"
    u"rank|position";

std::u16string joined(std::initializer_list<std::u16string_view> parts) {
    std::u16string whole;
    for (const auto part : parts) {
        whole.append(part);
    }
    return whole;
}

std::u16string singleWordCurrencyExpression() {
    return joined({u"\\b(", kDigitWords, u"|", kTeenWords, u"|", kTenWords, u")", kSpaces, u"dollars?\\b"});
}

std::u16string dayExpression() {
    std::u16string days(
        u"first|second|third|fourth|fifth|sixth|seventh|eighth|ninth|tenth|eleventh|twelfth|"
        u"thirteenth|fourteenth|fifteenth|sixteenth|seventeenth|eighteenth|nineteenth|twentieth");
    for (const auto* unit :
         {u"first", u"second", u"third", u"fourth", u"fifth", u"sixth", u"seventh", u"eighth", u"ninth"}) {
        days.append(u"|twenty[\\s-]").append(unit);
    }
    return days + u"|thirtieth|thirty[\\s-]first";
}

std::u16string dateExpression(std::u16string_view betweenMonthAndDay) {
    const auto year =
        joined({u"(?:twenty|nineteen)(?:", kSpaces, u"|-)?(?:oh", kSpaces, u")?(?:", kDigitWords, u"|",
                kTeenWords, u"|", kTenWords, u")(?:", kSpaces, u"(?:", kDigitWords, u"))?"});
    return joined({u"\\b(", kMonthWords, u")", betweenMonthAndDay, u"(", dayExpression(), u")(?:", kSpaces,
                   u"(?:of", kSpaces, u")?(", year, u"))?\\b"});
}

std::u16string timeExpression() {
    std::u16string minutes = joined({u"oh", kSpaces, u"(?:", kDigitWords, u")|", kTeenWords});
    for (const auto* tens : {u"twenty", u"thirty", u"forty", u"fifty"}) {
        minutes.append(u"|").append(tens);
        for (const auto unit : pieces(kDigitWords, u'|')) {
            minutes.append(u"|").append(tens).append(u"[\\s-]").append(unit);
        }
    }
    return joined(
        {u"\\b(", kHourWords, u")", kSpaces, u"(", minutes, u")", kSpaces, u"(AM|PM|a\\.m\\.|p\\.m\\.)\\b"});
}

std::u16string wholeHourExpression() {
    return joined({u"\\b(", kHourWords, u")", kSpaces, u"(AM|PM|a\\.m\\.|p\\.m\\.|o'clock)\\b"});
}

std::u16string ordinalExpression() {
    return joined(
        {u"\\b(?:the", kSpaces, u")(", kOrdinalWords, u")(?=", kSpaces, u"(?:", kOrdinalNouns, u")\\b)"});
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

TranscriptionFormatter::Step TranscriptionFormatter::makeStep(const char* name,
                                                              std::u16string_view firstWords,
                                                              std::u16string_view expression) {
    auto pattern = TextPattern::compile(expression);
    if (!pattern) {
        throw std::logic_error(std::string("invalid pattern: ") + name);
    }
    return {name, KnownWords(firstWords), std::move(*pattern)};
}

TranscriptionFormatter::TranscriptionFormatter(const UserDefaults& defaults, SystemLog& log,
                                               std::string_view locale)
    : defaults_(defaults),
      log_(log),
      decimal_(locale),
      singleWordCurrency_(makeStep("formatCurrency", joined({kDigitWords, u"|", kTeenWords, u"|", kTenWords}),
                                   singleWordCurrencyExpression())),
      datesWithThe_(makeStep("formatDates", kMonthWords, dateExpression(joined({kSpaces, u"the", kSpaces})))),
      dates_(makeStep("formatDates", kMonthWords, dateExpression(kSpaces))),
      times_(makeStep("formatTimes", kHourWords, timeExpression())),
      wholeHours_(makeStep("formatTimes", kHourWords, wholeHourExpression())),
      ordinals_(makeStep("formatOrdinals", u"the", ordinalExpression())) {}

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
    replaceAll(text, singleWordCurrency_, [](const TextMatch& match) -> std::optional<std::u16string> {
        const auto word = lowerCased(match.group(1));
        const auto ones = onesValue(word);
        const auto value = ones ? ones : tensValue(word);
        return value ? std::optional(u"$" + decimal(*value)) : std::nullopt;
    });
}

void TranscriptionFormatter::formatDates(std::u16string& text) const {
    constexpr DateGroups kGroups{1, 2, 3};
    replaceDates(text, datesWithThe_, kGroups);
    replaceDates(text, dates_, kGroups);
}

void TranscriptionFormatter::replaceDates(std::u16string& text, const Step& step, DateGroups groups) const {
    replaceAll(text, step, [groups](const TextMatch& match) -> std::optional<std::u16string> {
        constexpr int kLastDay = 31;
        const auto month = monthNumber(lowerCased(match.group(groups.month)));
        const auto day = parseDayOrdinal(match.group(groups.day));
        if (!month || day < 1 || day > kLastDay) {
            return std::nullopt;
        }
        auto date = std::u16string(monthName(*month)) + u" " + decimal(day);
        if (match.has(groups.year)) {
            date += u", " + decimal(parseSpokenYear(match.group(groups.year)));
        }
        return date;
    });
}

void TranscriptionFormatter::formatTimes(std::u16string& text) const {
    replaceAll(text, times_, [](const TextMatch& match) -> std::optional<std::u16string> {
        const auto hour = onesValue(lowerCased(match.group(1)));
        if (!hour) {
            return std::nullopt;
        }
        return decimal(*hour) + u":" + twoDigits(minutesOf(match.group(2))) + u" " + periodOf(match.group(3));
    });
    replaceAll(text, wholeHours_, [](const TextMatch& match) -> std::optional<std::u16string> {
        const auto hour = onesValue(lowerCased(match.group(1)));
        if (!hour) {
            return std::nullopt;
        }
        const bool isClock = lowerCased(match.group(2)).find(u"o'clock") != std::u16string::npos;
        return decimal(*hour) + (isClock ? u" o'clock" : u":00 " + periodOf(match.group(2)));
    });
}

void TranscriptionFormatter::formatOrdinals(std::u16string& text) const {
    replaceAll(text, ordinals_, [](const TextMatch& match) -> std::optional<std::u16string> {
        // Matching goes by folded letters, and so must finding out which of the words it was.
        const auto value = ordinalValue(FoldedText(match.group(1)).folded());
        return value ? std::optional(u"the " + writtenOrdinal(*value)) : std::nullopt;
    });
}

void TranscriptionFormatter::formatSpokenNumbers(std::u16string& text) const {
    text = replaceNumberRuns(text, [this](std::u16string_view words) -> std::optional<std::u16string> {
        const auto value = spokenNumber(words);
        return value && *value >= 1 ? decimal_.written(*value) : std::nullopt;
    });
}

void TranscriptionFormatter::replaceAll(std::u16string& text, const Step& step,
                                        const TextPattern::Replacement& replacement) const {
    if (const auto replaced = step.pattern.replaceAll(text, step.firstWords, replacement); !replaced) {
        reportTextFault(log_, step.name, replaced.error().description);
    }
}

} // namespace tovik
