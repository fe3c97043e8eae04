// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/PlainTextRules.h"

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/numberformatter.h>
#include <unicode/regex.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <stdexcept>

namespace tovik::test::plain {

namespace {

using icu::UnicodeString;

UnicodeString wide(const std::string& text) {
    return UnicodeString::fromUTF8(text);
}

std::string narrow(const UnicodeString& text) {
    std::string result;
    text.toUTF8String(result);
    return result;
}

std::string lowered(const std::string& text) {
    return narrow(wide(text).toLower(icu::Locale::getRoot()));
}

std::string trimmed(const std::string& text) {
    auto rest = wide(text);
    while (rest.length() > 0 && u_isUWhiteSpace(rest[0]) != 0) {
        rest.remove(0, 1);
    }
    while (rest.length() > 0 && u_isUWhiteSpace(rest[rest.length() - 1]) != 0) {
        rest.truncate(rest.length() - 1);
    }
    return narrow(rest);
}

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> found(1);
    for (const auto c : text) {
        if (c == separator) {
            found.emplace_back();
        } else {
            found.back() += c;
        }
    }
    std::erase(found, std::string());
    return found;
}

int characters(const std::string& text) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> iterator(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    const auto utf16 = wide(text);
    iterator->setText(utf16);
    int count = 0;
    while (iterator->next() != icu::BreakIterator::DONE) {
        ++count;
    }
    return count;
}

struct Match {
    std::int32_t start;
    std::int32_t end;
    /// Group 0 is the whole match; what did not take part is nothing.
    std::vector<std::pair<bool, std::string>> groups;
    bool followsDollarSign;
};

std::vector<Match> allMatches(const UnicodeString& text, const std::string& pattern) {
    UErrorCode status = U_ZERO_ERROR;
    icu::RegexMatcher matcher(wide(pattern), UREGEX_CASE_INSENSITIVE, status);
    if (U_FAILURE(status)) {
        return {};
    }
    // Long runs may take all the memory they want.
    matcher.setStackLimit(0, status);
    matcher.reset(text);
    std::vector<Match> matches;
    while (matcher.find(status)) {
        Match match{matcher.start(status), matcher.end(status), {}, false};
        for (int group = 0; group <= matcher.groupCount(); ++group) {
            match.groups.emplace_back(matcher.start(group, status) >= 0,
                                      narrow(matcher.group(group, status)));
        }
        match.followsDollarSign = match.start > 0 && text[match.start - 1] == u'$';
        matches.push_back(std::move(match));
    }
    if (U_FAILURE(status)) {
        throw std::runtime_error(u_errorName(status));
    }
    return matches;
}

/// Whether a match is replaced, and by what.
using Rule = std::function<std::pair<bool, std::string>(const Match&)>;

std::string replaced(const std::string& text, const std::string& pattern, const Rule& rule) {
    auto result = wide(text);
    auto matches = allMatches(result, pattern);
    std::reverse(matches.begin(), matches.end());
    for (const auto& match : matches) {
        if (const auto [isReplaced, with] = rule(match); isReplaced) {
            result.replaceBetween(match.start, match.end, wide(with));
        }
    }
    return narrow(result);
}

std::string escaped(const std::string& literal) {
    std::string pattern;
    for (const auto c : literal) {
        if (std::string("*?+[](){}^$|\\./").find(c) != std::string::npos) {
            pattern += '\\';
        }
        pattern += c;
    }
    return pattern;
}

std::string expanded(const std::string& replacement, const std::string& matched) {
    std::string result;
    for (std::size_t i = 0; i < replacement.size(); ++i) {
        const auto next = i + 1 < replacement.size() ? replacement[i + 1] : '\0';
        if (replacement[i] == '\\' && i + 1 < replacement.size()) {
            result += replacement[++i];
        } else if (replacement[i] == '$' && next >= '0' && next <= '9') {
            result += next == '0' ? matched : "";
            ++i;
        } else {
            result += replacement[i];
        }
    }
    return result;
}

void sortLongestFirst(std::vector<std::string>& phrases) {
    std::stable_sort(phrases.begin(), phrases.end(), [](const std::string& a, const std::string& b) {
        return characters(a) > characters(b);
    });
}

const std::map<std::string, int> kOnes{
    {"zero", 0},     {"one", 1},      {"two", 2},        {"three", 3},     {"four", 4},
    {"five", 5},     {"six", 6},      {"seven", 7},      {"eight", 8},     {"nine", 9},
    {"ten", 10},     {"eleven", 11},  {"twelve", 12},    {"thirteen", 13}, {"fourteen", 14},
    {"fifteen", 15}, {"sixteen", 16}, {"seventeen", 17}, {"eighteen", 18}, {"nineteen", 19}};
const std::map<std::string, int> kTens{{"twenty", 20}, {"thirty", 30},  {"forty", 40},  {"fifty", 50},
                                       {"sixty", 60},  {"seventy", 70}, {"eighty", 80}, {"ninety", 90}};
const std::map<std::string, std::string> kOrdinals{
    {"first", "1st"},        {"second", "2nd"},      {"third", "3rd"},       {"fourth", "4th"},
    {"fifth", "5th"},        {"sixth", "6th"},       {"seventh", "7th"},     {"eighth", "8th"},
    {"ninth", "9th"},        {"tenth", "10th"},      {"eleventh", "11th"},   {"twelfth", "12th"},
    {"thirteenth", "13th"},  {"fourteenth", "14th"}, {"fifteenth", "15th"},  {"sixteenth", "16th"},
    {"seventeenth", "17th"}, {"eighteenth", "18th"}, {"nineteenth", "19th"}, {"twentieth", "20th"},
    {"thirtieth", "30th"}};
const std::vector<std::string> kMonths{"January", "February", "March",     "April",   "May",      "June",
                                       "July",    "August",   "September", "October", "November", "December"};

const std::string kOneToNineteen = "one|two|three|four|five|six|seven|eight|nine|ten|eleven|twelve|thirteen|"
                                   "fourteen|fifteen|sixteen|seventeen|eighteen|nineteen";
const std::string kTwentyToNinety = "twenty|thirty|forty|fifty|sixty|seventy|eighty|ninety";
const std::string kScales = "hundred|thousand|million|billion";
const std::string kBelowHundred = kOneToNineteen + "|" + kTwentyToNinety;
const std::string kDollarWords = kBelowHundred + "|" + kScales;

std::string withSpaces(std::string text) {
    text = lowered(text);
    std::replace(text.begin(), text.end(), '-', ' ');
    return text;
}

std::string joined(const std::vector<std::string>& words, std::size_t from) {
    std::string text;
    for (auto i = from; i < words.size(); ++i) {
        text += (i == from ? "" : " ") + words[i];
    }
    return text;
}

std::string twoDigits(std::int64_t number) {
    return (number < 10 ? "0" : "") + std::to_string(number);
}

std::string formatCurrency(const std::string& text) {
    const auto many = replaced(text,
                               "\\b((?:(?:" + kDollarWords + ")(?:\\s+|-))+(?:" + kDollarWords +
                                   "))\\s+dollars?(?:\\s+and\\s+((?:(?:" + kBelowHundred +
                                   ")(?:\\s+|-))*(?:" + kBelowHundred + "))\\s+cents?)?\\b",
                               [](const Match& match) {
                                   auto written =
                                       "$" + std::to_string(parseSpokenNumber(match.groups[1].second));
                                   if (match.groups[2].first) {
                                       written += "." + twoDigits(parseSpokenNumber(match.groups[2].second));
                                   }
                                   return std::pair(true, written);
                               });
    return replaced(many, "\\b(" + kBelowHundred + ")\\s+dollars?\\b", [](const Match& match) {
        const auto word = lowered(match.groups[1].second);
        if (kOnes.contains(word)) {
            return std::pair(true, "$" + std::to_string(kOnes.at(word)));
        }
        return kTens.contains(word) ? std::pair(true, "$" + std::to_string(kTens.at(word)))
                                    : std::pair(false, std::string());
    });
}

std::string replaceDates(const std::string& text, const std::string& pattern) {
    return replaced(text, pattern, [](const Match& match) {
        const auto wanted = lowered(match.groups[1].second);
        const auto month = std::find_if(kMonths.begin(), kMonths.end(),
                                        [&](const std::string& name) { return lowered(name) == wanted; });
        const auto day = parseDayOrdinal(match.groups[2].second);
        if (month == kMonths.end() || day < 1 || day > 31) {
            return std::pair(false, std::string());
        }
        auto written = *month + " " + std::to_string(day);
        if (match.groups[3].first) {
            written += ", " + std::to_string(parseSpokenYear(match.groups[3].second));
        }
        return std::pair(true, written);
    });
}

std::string formatDates(const std::string& text) {
    const std::string months =
        "january|february|march|april|may|june|july|august|september|october|november|december";
    const std::string days =
        "first|second|third|fourth|fifth|sixth|seventh|eighth|ninth|tenth|eleventh|twelfth|thirteenth|"
        "fourteenth|"
        "fifteenth|sixteenth|seventeenth|eighteenth|nineteenth|twentieth|twenty[\\s-]first|twenty[\\s-]"
        "second|"
        "twenty[\\s-]third|twenty[\\s-]fourth|twenty[\\s-]fifth|twenty[\\s-]sixth|twenty[\\s-]seventh|"
        "twenty[\\s-]eighth|twenty[\\s-]ninth|thirtieth|thirty[\\s-]first";
    const auto year = ")(?:\\s+(?:of\\s+)?((?:(?:twenty|nineteen)(?:\\s+|-)?(?:oh\\s+)?(?:" + kBelowHundred +
                      ")(?:\\s+(?:one|two|three|four|five|six|seven|eight|nine))?)))?\\b";
    const auto withThe = replaceDates(text, "\\b(" + months + ")\\s+the\\s+(" + days + year);
    return replaceDates(withThe, "\\b(" + months + ")\\s+(" + days + year);
}

std::string period(const std::string& spoken) {
    auto written = narrow(wide(spoken).toUpper(icu::Locale::getRoot()));
    std::erase(written, '.');
    return written;
}

std::string formatTimes(const std::string& text) {
    std::string minutes = "oh\\s+(?:one|two|three|four|five|six|seven|eight|nine)|ten|eleven|twelve|thirteen|"
                          "fourteen|fifteen|sixteen|seventeen|eighteen|nineteen";
    for (const std::string tens : {"twenty", "thirty", "forty", "fifty"}) {
        minutes += "|" + tens;
        for (const std::string unit :
             {"one", "two", "three", "four", "five", "six", "seven", "eight", "nine"}) {
            minutes += "|" + tens + "[\\s-]" + unit;
        }
    }
    const std::string hours = "\\b(one|two|three|four|five|six|seven|eight|nine|ten|eleven|twelve)\\s+(";
    const auto withMinutes =
        replaced(text, hours + minutes + ")\\s+(AM|PM|a\\.m\\.|p\\.m\\.)\\b", [](const Match& match) {
            const auto hour = kOnes.find(lowered(match.groups[1].second));
            if (hour == kOnes.end()) {
                return std::pair(false, std::string());
            }
            const auto spoken = withSpaces(match.groups[2].second);
            std::int64_t minute = 0;
            if (spoken.starts_with("oh ")) {
                minute = kOnes.contains(spoken.substr(3)) ? kOnes.at(spoken.substr(3)) : 0;
            } else {
                minute = parseSpokenNumber(spoken);
            }
            return std::pair(true, std::to_string(hour->second) + ":" + twoDigits(minute) + " " +
                                       period(match.groups[3].second));
        });
    return replaced(withMinutes, hours + "AM|PM|a\\.m\\.|p\\.m\\.|o'clock)\\b", [](const Match& match) {
        const auto hour = kOnes.find(lowered(match.groups[1].second));
        if (hour == kOnes.end()) {
            return std::pair(false, std::string());
        }
        const auto written = std::to_string(hour->second);
        if (lowered(match.groups[2].second).find("o'clock") != std::string::npos) {
            return std::pair(true, written + " o'clock");
        }
        return std::pair(true, written + ":00 " + period(match.groups[2].second));
    });
}

std::string formatOrdinals(std::string text) {
    for (const auto& [word, written] : kOrdinals) {
        text = replaced(
            text,
            "\\b(?:the\\s+)" + escaped(word) +
                "(?=\\s+(?:place|floor|round|quarter|time|step|try|attempt|item|chapter|section|grade|"
                "inning|lap|seed|draft|pick|rank|position)\\b)",
            [&ordinal = written](const Match&) { return std::pair(true, "the " + ordinal); });
    }
    return text;
}

std::string formatSpokenNumbers(const std::string& text) {
    const auto words = "zero|" + kDollarWords;
    return replaced(text, "\\b((?:" + words + ")(?:[\\s-]+(?:" + words + "))+)\\b", [](const Match& match) {
        const auto value = parseSpokenNumber(match.groups[0].second);
        if (match.followsDollarSign || value < 1) {
            return std::pair(false, std::string());
        }
        UErrorCode status = U_ZERO_ERROR;
        return std::pair(true, narrow(icu::number::NumberFormatter::withLocale(icu::Locale::getUS())
                                          .formatInt(value, status)
                                          .toString(status)));
    });
}

std::pair<bool, std::string> with(std::string text) {
    return {true, std::move(text)};
}

} // namespace

std::string applyCorrections(const std::string& text, const Mapping& mapping) {
    std::vector<std::string> phrases;
    for (const auto& [heard, replacement] : mapping) {
        phrases.push_back(heard);
    }
    sortLongestFirst(phrases);
    auto result = text;
    for (const auto& heard : phrases) {
        result = replaced(result, "\\b" + escaped(heard) + "\\b", [&](const Match& match) {
            return with(expanded(mapping.at(heard), match.groups[0].second));
        });
    }
    return result;
}

std::string spacePunctuation(const std::string& text) {
    auto result = replaced(text, "\\.+", [](const Match&) { return with("."); });
    for (const std::string mark : {"\\.", "!", "\\?", ":", ";", ","}) {
        const auto written = std::string(1, mark.back());
        result = replaced(result, mark + "(\\S)",
                          [&](const Match& match) { return with(written + " " + match.groups[1].second); });
    }
    return replaced(result, " +", [](const Match&) { return with(" "); });
}

std::string removeFillerWords(const std::string& text, const std::string& list) {
    std::vector<std::string> words;
    for (const auto& piece : split(list, ',')) {
        if (const auto word = trimmed(piece); !word.empty()) {
            words.push_back(word);
        }
    }
    if (words.empty()) {
        return text;
    }
    sortLongestFirst(words);
    auto result = text;
    for (const auto& word : words) {
        result = replaced(result, "\\b" + escaped(word) + "\\b", [](const Match&) { return with(""); });
    }
    result = replaced(result, " +", [](const Match&) { return with(" "); });
    result =
        replaced(result, "\\s+([,.!?;:])", [](const Match& match) { return with(match.groups[1].second); });
    return trimmed(result);
}

std::string formatSpokenForms(const std::string& text) {
    if (text.empty()) {
        return text;
    }
    return formatSpokenNumbers(formatOrdinals(formatTimes(formatDates(formatCurrency(text)))));
}

std::string processTranscription(const std::string& text, const std::string& fillerList) {
    if (text.empty()) {
        return text;
    }
    return formatSpokenForms(removeFillerWords(spacePunctuation(text), fillerList));
}

Mapping parseDisplayString(const std::string& text) {
    const std::string arrow = "→";
    Mapping mapping;
    for (const auto& untrimmed : split(text, ',')) {
        const auto piece = trimmed(untrimmed);
        const auto separator = piece.find(arrow) != std::string::npos ? arrow : std::string("=");
        const auto place = piece.find(separator);
        if (place == std::string::npos) {
            continue;
        }
        const auto heard = lowered(trimmed(piece.substr(0, place)));
        const auto replacement = trimmed(piece.substr(place + separator.size()));
        if (!heard.empty() && !replacement.empty()) {
            mapping[heard] = replacement;
        }
    }
    return mapping;
}

std::int64_t parseSpokenNumber(const std::string& words) {
    std::int64_t total = 0;
    std::int64_t group = 0;
    for (const auto& word : split(withSpaces(words), ' ')) {
        if (kOnes.contains(word)) {
            group += kOnes.at(word);
        } else if (kTens.contains(word)) {
            group += kTens.at(word);
        } else if (word == "hundred") {
            group = (group > 1 ? group : 1) * 100;
        } else if (word == "thousand" || word == "million" || word == "billion") {
            const auto scale = word == "thousand" ? 1'000 : word == "million" ? 1'000'000 : 1'000'000'000;
            total += (group > 1 ? group : 1) * scale;
            group = 0;
        }
    }
    return total + group;
}

std::int64_t parseDayOrdinal(const std::string& words) {
    const auto day = withSpaces(words);
    if (kOrdinals.contains(day)) {
        return std::stoi(kOrdinals.at(day));
    }
    const auto parts = split(day, ' ');
    if (parts.size() != 2 || !kTens.contains(parts[0]) || !kOrdinals.contains(parts[1])) {
        return 0;
    }
    return kTens.at(parts[0]) + std::stoi(kOrdinals.at(parts[1]));
}

std::int64_t parseSpokenYear(const std::string& words) {
    const auto parts = split(withSpaces(words), ' ');
    if (parts.size() < 2) {
        return parseSpokenNumber(words);
    }
    const auto& first = parts[0];
    const auto value = kOnes.contains(first) ? kOnes.at(first) : kTens.contains(first) ? kTens.at(first) : 0;
    if (value == 19 || value == 20) {
        return value * 100 + parseSpokenNumber(joined(parts, 1));
    }
    if (kTens.contains(first)) {
        const auto rest = joined(parts, 2);
        if (parts[1] == "oh" && kOnes.contains(rest)) {
            return value * 100 + kOnes.at(rest);
        }
        return value * 100 + parseSpokenNumber(joined(parts, 1));
    }
    return parseSpokenNumber(words);
}

} // namespace tovik::test::plain
