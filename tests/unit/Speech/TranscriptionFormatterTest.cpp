// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/TranscriptionFormatter.h"

#include "Rows.h"
#include "Speech/Text/Unicode.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

namespace tovik::test {

namespace {

struct Formatter {
    MemoryUserDefaults defaults;
    RecordingLog log;
    TranscriptionFormatter formatter{defaults, log, "en_US"};
};

class Format : public testing::TestWithParam<TextRow> {};

TEST_P(Format, writesSpokenForms) {
    const Formatter with;
    EXPECT_EQ(with.formatter.apply(GetParam().input), GetParam().expected);
    EXPECT_THAT(with.log.printed(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Currency, Format,
    testing::Values(
        TextRow{"two words", "twenty five dollars", "$25"}, TextRow{"hyphen", "Twenty-Five Dollars", "$25"},
        TextRow{"cents after one word are left alone", "twelve dollars and fifty cents",
                "$12 and fifty cents"},
        TextRow{"cents", "one hundred twenty dollars and five cents", "$120.05"},
        TextRow{"cents of two words", "two hundred dollars and twenty five cents", "$200.25"},
        TextRow{"one cent", "two hundred dollars and one cent", "$200.01"},
        TextRow{"cents and a single amount", "five dollars and ten cents", "$5 and ten cents"},
        TextRow{"no grouping", "two thousand dollars", "$2000"}, TextRow{"one dollar", "one dollar", "$1"},
        TextRow{"many cents", "one thousand dollars and ninety ninety cents", "$1000.180"},
        TextRow{"hundred cents are no cents", "one hundred dollars and one hundred cents",
                "$100 and 100 cents"},
        TextRow{"in a sentence", "It costs one million two hundred thousand dollars, right",
                "It costs $1200000, right"},
        TextRow{"zero is no amount", "zero dollars", "zero dollars"},
        TextRow{"zero breaks an amount", "one zero one dollars", "1 $1"},
        TextRow{"the number rule spares what follows a dollar sign", "$twenty five", "$twenty five"},
        TextRow{"a scale alone is no single amount", "hundred dollars", "hundred dollars"},
        TextRow{"two hyphens break an amount", "twenty--five dollars", "twenty--$5"},
        TextRow{"dollar that goes on", "twenty five dollarsign", "25 dollarsign"},
        TextRow{"dollars with an apostrophe", "twenty five dollars'", "$25'"},
        TextRow{"dollars with a mark", "twenty five dollars\u0301", "25 dollars\u0301"},
        TextRow{"long s in the amount counts nothing", "\u017Fix \u017Feven dollars", "$0"},
        TextRow{"an amount that is left alone between others", "six dollars \u017Fix dollars six dollars",
                "$6 \u017Fix dollars $6"},
        TextRow{"long s in a single amount", "\u017Fix dollars", "\u017Fix dollars"},
        TextRow{"long s in dollars", "twenty five dollar\u017F", "$25"},
        TextRow{"words that began before", "xtwenty five dollars", "xtwenty $5"},
        TextRow{"an amount right behind another", "one one dollars two two dollars", "$2 $4"},
        TextRow{"a tab between number words", "twenty\tfive dollars", "$0"},
        TextRow{
            "a number too large to hold",
            "one hundred hundred hundred hundred hundred hundred hundred hundred hundred hundred dollars",
            "one hundred hundred hundred hundred hundred hundred hundred hundred hundred hundred dollars"}),
    rowName<testing::TestParamInfo<TextRow>>);

INSTANTIATE_TEST_SUITE_P(
    Dates, Format,
    testing::Values(TextRow{"with the", "march the fifth", "March 5"},
                    TextRow{"with a year", "december thirty first twenty twenty four", "December 31, 2024"},
                    TextRow{"of a year", "may fifth of nineteen ninety nine", "May 5, 1999"},
                    TextRow{"only one to thirty one is checked", "february thirtieth", "February 30"},
                    TextRow{"hyphen and capitals", "On JULY Twenty-First we met", "On July 21 we met"},
                    TextRow{"oh in a year", "june third nineteen oh five", "June 3, 1905"},
                    TextRow{"twenty ten", "june third twenty ten", "June 3, 2010"},
                    TextRow{"a year of one word only", "june third twenty", "June 3 twenty"},
                    TextRow{"year words without space", "june third twentyten", "June 3, 0"},
                    TextRow{"no day", "march five", "march five"},
                    TextRow{"two dates", "may first, june second", "May 1, June 2"},
                    TextRow{"a line feed inside the day", "may twenty\nfirst", "may twenty\nfirst"},
                    TextRow{"white space of other kinds between", "may\u00A0the\tfirst", "May 1"},
                    TextRow{"long s in a month is left", "augu\u017Ft first", "augu\u017Ft first"},
                    TextRow{"long s in a day is left", "may fir\u017Ft", "may fir\u017Ft"},
                    TextRow{"ordinal that goes on", "may firsts", "may firsts"},
                    TextRow{"month that began before", "dismay first", "dismay first"},
                    TextRow{"the word may", "you may first eat", "you May 1 eat"}),
    rowName<testing::TestParamInfo<TextRow>>);

INSTANTIATE_TEST_SUITE_P(
    Times, Format,
    testing::Values(TextRow{"hour and minutes", "one thirty PM", "1:30 PM"},
                    TextRow{"lower case", "one thirty pm", "1:30 PM"},
                    TextRow{"oh", "ten oh five am", "10:05 AM"},
                    TextRow{"seven oh five", "seven oh five am", "7:05 AM"},
                    TextRow{"o'clock", "three o'clock", "3 o'clock"},
                    TextRow{"capital o'clock", "Three O'Clock", "3 o'clock"},
                    TextRow{"o'clock with kelvin", "three o'cloc\u212A", "3 o'clock"},
                    TextRow{"noon", "twelve pm", "12:00 PM"}, TextRow{"whole hour", "nine am", "9:00 AM"},
                    TextRow{"tens and units", "eleven fifty-nine am", "11:59 AM"},
                    TextRow{"dotted at the end is no time", "one thirty p.m.", "31 p.m."},
                    TextRow{"dotted before a word", "one thirty p.m.x", "1:30 PMx"},
                    TextRow{"dotted hour before a word", "nine a.m.x", "9:00 AMx"},
                    TextRow{"dotted before a space", "nine a.m. sharp", "nine a.m. sharp"},
                    TextRow{"no period word", "meet at one thirty", "meet at 31"},
                    TextRow{"period that goes on", "nine amps", "nine amps"},
                    TextRow{"thirteen is no hour", "thirteen pm", "thirteen pm"},
                    TextRow{"two spaces behind oh", "seven oh  five am", "7:00 AM"},
                    TextRow{"tab between tens and units", "seven twenty\tfive am", "7:00 AM"},
                    TextRow{"long s in the hour is left", "\u017Fix forty pm", "40 pm"},
                    TextRow{"the curly apostrophe is no o'clock", "three o\u2019clock", "three o\u2019clock"},
                    TextRow{"the time in a row", "one one one am", "2 1:00 AM"}),
    rowName<testing::TestParamInfo<TextRow>>);

INSTANTIATE_TEST_SUITE_P(
    Ordinals, Format,
    testing::Values(TextRow{"before a noun", "the third time", "the 3rd time"},
                    TextRow{"without the", "third time", "third time"},
                    TextRow{"before another noun", "the third house", "the third house"},
                    TextRow{"the capital is lost", "The first place", "the 1st place"},
                    TextRow{"twelfth", "the twelfth inning", "the 12th inning"},
                    TextRow{"second", "the second try", "the 2nd try"},
                    TextRow{"thirtieth", "the thirtieth floor", "the 30th floor"},
                    TextRow{"eleventh", "the eleventh lap", "the 11th lap"},
                    TextRow{"compound ones are not", "the twenty first floor", "the twenty first floor"},
                    TextRow{"white space before the noun stays", "the  sixth \n step", "the 6th \n step"},
                    TextRow{"a noun that goes on", "the first places", "the first places"},
                    TextRow{"a noun with a mark behind it", "the first place.", "the 1st place."},
                    TextRow{"sixth and sixteenth", "the sixth seed the sixteenth seed",
                            "the 6th seed the 16th seed"},
                    TextRow{"a ligature", "the ﬁrst place", "the 1st place"},
                    TextRow{"long s", "the fir\u017Ft place", "the 1st place"},
                    TextRow{"the that began before", "bathe first place", "bathe first place"}),
    rowName<testing::TestParamInfo<TextRow>>);

INSTANTIATE_TEST_SUITE_P(
    Numbers, Format,
    testing::Values(
        TextRow{"run", "two hundred fifty", "250"},
        TextRow{"one thousand is grouped", "one thousand", "1,000"},
        TextRow{"and breaks a run", "two thousand and twenty", "2,000 and twenty"},
        TextRow{"they add up", "one one", "2"}, TextRow{"zero stays", "zero zero", "zero zero"},
        TextRow{"a single word stays", "I have two cats", "I have two cats"},
        TextRow{"hyphen", "twenty-five", "25"}, TextRow{"many hyphens and spaces", "twenty - - five", "25"},
        TextRow{"grouping", "two thousand twenty", "2,020"},
        TextRow{"a year is no number", "twenty twenty", "40"},
        TextRow{"millions", "one million two hundred thousand", "1,200,000"},
        TextRow{"billions", "nine billion nine", "9,000,000,009"},
        TextRow{"the last word goes on", "one two threes", "3 threes"},
        TextRow{"the last word has a mark", "one two three\u0301", "3 three\u0301"},
        TextRow{"a word began before", "someone two three", "someone 5"},
        TextRow{"apostrophe", "one two's", "3's"}, TextRow{"underscore", "one two_", "one two_"},
        TextRow{"two runs", "one two, three four", "3, 7"},
        TextRow{"tabs join words that then mean nothing", "one\ttwo", "one\ttwo"},
        TextRow{"a tab in a longer run", "one two\tthree", "1"},
        TextRow{"no-break space", "one\u00A0two", "one\u00A0two"},
        TextRow{"long s means nothing", "\u017Fix \u017Fix", "\u017Fix \u017Fix"},
        TextRow{"long s in a longer run", "one \u017Fix", "1"},
        TextRow{"behind a dollar sign", "$one two", "$one two"},
        TextRow{"behind a dollar sign and a space", "$ one two", "$ 3"},
        TextRow{"too large to hold",
                "nine hundred hundred hundred hundred hundred hundred hundred hundred hundred hundred",
                "nine hundred hundred hundred hundred hundred hundred hundred hundred hundred hundred"},
        TextRow{"empty", "", ""}),
    rowName<testing::TestParamInfo<TextRow>>);

using NumberRow = Row<std::string, std::int64_t>;

class SpokenNumber : public testing::TestWithParam<NumberRow> {};
TEST_P(SpokenNumber, addsUp) {
    EXPECT_EQ(TranscriptionFormatter::parseSpokenNumber(toUtf16(GetParam().input)), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(
    Rows, SpokenNumber,
    testing::Values(
        NumberRow{"group", "two hundred fifty", 250}, NumberRow{"one thousand", "one thousand", 1000},
        NumberRow{"thousand", "thousand", 1000}, NumberRow{"values add", "one two three", 6},
        NumberRow{"oh is ignored", "oh five", 5}, NumberRow{"nothing", "", 0},
        NumberRow{"no number", "cat dog", 0}, NumberRow{"hyphen and case", "Twenty-FIVE", 25},
        NumberRow{"hundred alone", "hundred", 100}, NumberRow{"zero hundred", "zero hundred", 100},
        NumberRow{"hundred hundred", "two hundred hundred", 20'000},
        NumberRow{"thousand thousand", "two thousand thousand", 3000},
        NumberRow{"all scales", "one billion two million three thousand four hundred five", 1'002'003'405},
        NumberRow{"only spaces part words", "twenty\tfive", 0},
        NumberRow{"many spaces", "  twenty   five ", 25}, NumberRow{"long s", "\u017Fix", 0},
        NumberRow{"largest group", "nine hundred ninety nine million", 999'000'000},
        NumberRow{"too large",
                  "hundred hundred hundred hundred hundred hundred hundred hundred hundred hundred", 0}),
    rowName<testing::TestParamInfo<NumberRow>>);

class DayOrdinal : public testing::TestWithParam<NumberRow> {};
TEST_P(DayOrdinal, isADay) {
    EXPECT_EQ(TranscriptionFormatter::parseDayOrdinal(toUtf16(GetParam().input)), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(
    Rows, DayOrdinal,
    testing::Values(NumberRow{"first", "first", 1}, NumberRow{"twelfth", "Twelfth", 12},
                    NumberRow{"twentieth", "twentieth", 20}, NumberRow{"thirtieth", "thirtieth", 30},
                    NumberRow{"twenty first", "twenty first", 21}, NumberRow{"hyphen", "twenty-ninth", 29},
                    NumberRow{"thirty first", "thirty first", 31},
                    NumberRow{"ninety ninth", "ninety ninth", 99},
                    NumberRow{"twenty twentieth", "twenty twentieth", 40}, NumberRow{"cardinal", "five", 0},
                    NumberRow{"three words", "the twenty first", 0},
                    NumberRow{"first is no tens", "one first", 0}, NumberRow{"nothing", "", 0},
                    NumberRow{"fortieth is not in the table", "fortieth", 0}),
    rowName<testing::TestParamInfo<NumberRow>>);

class SpokenYear : public testing::TestWithParam<NumberRow> {};
TEST_P(SpokenYear, isAYear) {
    EXPECT_EQ(TranscriptionFormatter::parseSpokenYear(toUtf16(GetParam().input)), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(
    Rows, SpokenYear,
    testing::Values(NumberRow{"2024", "twenty twenty four", 2024},
                    NumberRow{"1905", "nineteen oh five", 1905}, NumberRow{"2010", "twenty ten", 2010},
                    NumberRow{"1999", "nineteen ninety nine", 1999},
                    NumberRow{"hyphens", "twenty-twenty-four", 2024}, NumberRow{"one word", "twenty", 20},
                    NumberRow{"nineteen hundred", "nineteen hundred", 2000},
                    NumberRow{"tens", "thirty five", 3005}, NumberRow{"tens with oh", "forty oh five", 4005},
                    NumberRow{"tens with oh and more", "forty oh five six", 4011},
                    NumberRow{"tens and twenty", "thirty twenty one", 3021},
                    NumberRow{"ones", "eighteen twelve", 30},
                    NumberRow{"two thousand ten", "two thousand ten", 2010}, NumberRow{"nothing", "", 0},
                    NumberRow{"no number", "cat dog", 0}, NumberRow{"words without space", "twentyten", 0}),
    rowName<testing::TestParamInfo<NumberRow>>);

// Every word of every table, in every form in which it can be spoken.

struct Word {
    std::string spoken;
    int value;
};

const std::vector<Word> kOnes{{"zero", 0},     {"one", 1},        {"two", 2},       {"three", 3},
                              {"four", 4},     {"five", 5},       {"six", 6},       {"seven", 7},
                              {"eight", 8},    {"nine", 9},       {"ten", 10},      {"eleven", 11},
                              {"twelve", 12},  {"thirteen", 13},  {"fourteen", 14}, {"fifteen", 15},
                              {"sixteen", 16}, {"seventeen", 17}, {"eighteen", 18}, {"nineteen", 19}};
const std::vector<Word> kTens{{"twenty", 20}, {"thirty", 30},  {"forty", 40},  {"fifty", 50},
                              {"sixty", 60},  {"seventy", 70}, {"eighty", 80}, {"ninety", 90}};
const std::vector<Word> kScales{
    {"hundred", 100}, {"thousand", 1'000}, {"million", 1'000'000}, {"billion", 1'000'000'000}};

struct Ordinal {
    std::string spoken;
    std::string written;
    int day;
};
const std::vector<Ordinal> kOrdinals{
    {"first", "1st", 1},        {"second", "2nd", 2},        {"third", "3rd", 3},
    {"fourth", "4th", 4},       {"fifth", "5th", 5},         {"sixth", "6th", 6},
    {"seventh", "7th", 7},      {"eighth", "8th", 8},        {"ninth", "9th", 9},
    {"tenth", "10th", 10},      {"eleventh", "11th", 11},    {"twelfth", "12th", 12},
    {"thirteenth", "13th", 13}, {"fourteenth", "14th", 14},  {"fifteenth", "15th", 15},
    {"sixteenth", "16th", 16},  {"seventeenth", "17th", 17}, {"eighteenth", "18th", 18},
    {"nineteenth", "19th", 19}, {"twentieth", "20th", 20},   {"thirtieth", "30th", 30}};
const std::vector<std::string> kMonths{"January", "February", "March",     "April",   "May",      "June",
                                       "July",    "August",   "September", "October", "November", "December"};
const std::vector<std::string> kNouns{"place",   "floor", "round",   "quarter", "time",    "step",   "try",
                                      "attempt", "item",  "chapter", "section", "grade",   "inning", "lap",
                                      "seed",    "draft", "pick",    "rank",    "position"};

std::vector<Word> onesAndTens() {
    auto words = kOnes;
    words.insert(words.end(), kTens.begin(), kTens.end());
    return words;
}

std::string twoDigits(int number) {
    return (number < 10 ? "0" : "") + std::to_string(number);
}

class EveryWord : public testing::Test {
protected:
    std::string written(const std::string& spoken) const { return with.formatter.apply(spoken); }

    const Formatter with;
};

TEST_F(EveryWord, ofNumbers_hasItsValue) {
    auto words = onesAndTens();
    words.insert(words.end(), kScales.begin(), kScales.end());
    for (const auto& [spoken, value] : words) {
        EXPECT_EQ(TranscriptionFormatter::parseSpokenNumber(toUtf16(spoken)), value) << spoken;
    }
}

TEST_F(EveryWord, ofNumbers_countsInRuns) {
    for (const auto& [spoken, value] : onesAndTens()) {
        EXPECT_EQ(written("one hundred " + spoken), std::to_string(100 + value)) << spoken;
        EXPECT_EQ(written(spoken + "-one"), std::to_string(value + 1)) << spoken;
    }
    EXPECT_EQ(written("two hundred one"), "201");
    EXPECT_EQ(written("two thousand one"), "2,001");
    EXPECT_EQ(written("two million one"), "2,000,001");
    EXPECT_EQ(written("two billion one"), "2,000,000,001");
}

TEST_F(EveryWord, ofNumbers_countsInAmounts) {
    for (const auto& [spoken, value] : onesAndTens()) {
        if (value > 0) {
            EXPECT_EQ(written(spoken + " dollars"), "$" + std::to_string(value)) << spoken;
            EXPECT_EQ(written(spoken + " one dollars"), "$" + std::to_string(value + 1)) << spoken;
            EXPECT_EQ(written("one " + spoken + " dollars and " + spoken + " cents"),
                      "$" + std::to_string(value + 1) + "." + twoDigits(value))
                << spoken;
        }
    }
    for (const auto& [spoken, value] : kScales) {
        EXPECT_EQ(written("one " + spoken + " dollars"), "$" + std::to_string(value)) << spoken;
        EXPECT_EQ(written(spoken + " one dollars"), "$" + std::to_string(value + 1)) << spoken;
    }
}

TEST_F(EveryWord, ofHours_tellsTheTime) {
    for (const auto& [spoken, value] : kOnes) {
        const bool isHour = value >= 1 && value <= 12;
        const auto hour = std::to_string(value);
        EXPECT_EQ(written(spoken + " pm"), isHour ? hour + ":00 PM" : spoken + " pm");
        EXPECT_EQ(written(spoken + " o'clock"), isHour ? hour + " o'clock" : spoken + " o'clock");
        if (isHour) {
            EXPECT_EQ(written(spoken + " thirty am"), hour + ":30 AM");
        }
    }
}

TEST_F(EveryWord, ofMinutes_tellsTheTime) {
    for (const auto& [spoken, value] : kOnes) {
        if (value >= 1 && value <= 9) {
            EXPECT_EQ(written("two oh " + spoken + " pm"), "2:" + twoDigits(value) + " PM");
        } else if (value >= 10) {
            EXPECT_EQ(written("two " + spoken + " pm"), "2:" + twoDigits(value) + " PM");
        }
    }
    for (const auto& [tens, tensValue] : kTens) {
        for (const auto& [ones, onesValue] : kOnes) {
            if (tensValue <= 50 && onesValue >= 1 && onesValue <= 9) {
                const auto time = "2:" + std::to_string(tensValue + onesValue) + " PM";
                EXPECT_EQ(written("two " + tens + " " + ones + " pm"), time);
                EXPECT_EQ(written("two " + tens + "-" + ones + " pm"), time);
            }
        }
        EXPECT_EQ(written("two " + tens + " pm"), tensValue <= 50 ? "2:" + std::to_string(tensValue) + " PM"
                                                                  : std::to_string(tensValue + 2) + " pm");
    }
}

TEST_F(EveryWord, ofYears_isInTheDate) {
    for (const auto& [spoken, value] : onesAndTens()) {
        if (value > 0) {
            EXPECT_EQ(written("june first twenty " + spoken), "June 1, " + std::to_string(2000 + value));
            EXPECT_EQ(written("june first of nineteen " + spoken), "June 1, " + std::to_string(1900 + value));
            EXPECT_EQ(written("june first nineteen oh " + spoken), "June 1, " + std::to_string(1900 + value));
        }
        if (value >= 1 && value <= 9) {
            EXPECT_EQ(written("june first nineteen ninety " + spoken),
                      "June 1, " + std::to_string(1990 + value));
        }
    }
}

TEST_F(EveryWord, ofOrdinals_isWrittenAndIsADay) {
    for (const auto& [spoken, ordinal, day] : kOrdinals) {
        EXPECT_EQ(written("the " + spoken + " place"), "the " + ordinal + " place");
        EXPECT_EQ(TranscriptionFormatter::parseDayOrdinal(toUtf16(spoken)), day) << spoken;
        EXPECT_EQ(written("may " + spoken), "May " + std::to_string(day));
        EXPECT_EQ(written("may the " + spoken), "May " + std::to_string(day));
    }
}

TEST_F(EveryWord, ofCompoundDays_isADay) {
    for (const auto& [spoken, ordinal, units] : kOrdinals) {
        for (const auto& [tens, tensValue] : kTens) {
            const auto day = tensValue + units;
            EXPECT_EQ(TranscriptionFormatter::parseDayOrdinal(toUtf16(tens + "-" + spoken)), day);
            if (units <= 9 && day <= 31) {
                EXPECT_EQ(written("may " + tens + " " + spoken), "May " + std::to_string(day));
                EXPECT_EQ(written("may the " + tens + "-" + spoken), "May " + std::to_string(day));
            } else {
                EXPECT_EQ(written("may " + tens + "-" + spoken), "may " + tens + "-" + spoken);
            }
        }
    }
}

TEST_F(EveryWord, ofMonths_isInADate) {
    for (const auto& month : kMonths) {
        EXPECT_EQ(written(toUtf8(lowerCased(toUtf16(month))) + " the second"), month + " 2");
        EXPECT_EQ(written(toUtf8(upperCased(toUtf16(month))) + " second"), month + " 2");
    }
}

TEST_F(EveryWord, ofTheNouns_hasAnOrdinalBefore) {
    for (const auto& noun : kNouns) {
        EXPECT_EQ(written("The second " + noun), "the 2nd " + noun);
        EXPECT_EQ(written("the second " + noun + "s"), "the second " + noun + "s");
    }
}

using EnabledRow = Row<PropertyValue, bool>;
class Enabled : public testing::TestWithParam<EnabledRow> {};
TEST_P(Enabled, onlyAStoredFalseTurnsItOff) {
    Formatter with;
    with.defaults.set("transcription.formatter.enabled", GetParam().input);
    EXPECT_EQ(with.formatter.isEnabled(), GetParam().expected);
    EXPECT_EQ(with.formatter.apply("twenty five dollars"),
              GetParam().expected ? "$25" : "twenty five dollars");
}
INSTANTIATE_TEST_SUITE_P(Rows, Enabled,
                         testing::Values(EnabledRow{"false", false, false}, EnabledRow{"true", true, true},
                                         EnabledRow{"the string false", "false", true},
                                         EnabledRow{"the number zero", 0, true},
                                         EnabledRow{"null", nullptr, true}),
                         rowName<testing::TestParamInfo<EnabledRow>>);

TEST(TranscriptionFormatter, whenNothingIsStored_isEnabled) {
    EXPECT_TRUE(Formatter().formatter.isEnabled());
}

TEST(TranscriptionFormatter, inAnotherLocale_groupsAsThatLocaleDoes) {
    const MemoryUserDefaults defaults;
    RecordingLog log;
    EXPECT_EQ(TranscriptionFormatter(defaults, log, "de_DE.UTF-8").apply("two thousand twenty"), "2.020");
    EXPECT_EQ(TranscriptionFormatter(defaults, log, "en_IN").apply("one million one"), "10,00,001");
}

class NumberFormat : public testing::TestWithParam<TextRow> {};
TEST_P(NumberFormat, isThatOfTheLocale) {
    const MemoryUserDefaults defaults;
    RecordingLog log;
    EXPECT_EQ(TranscriptionFormatter(defaults, log, GetParam().input)
                  .apply("one million two hundred thirty four thousand five hundred sixty seven"),
              GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(
    Rows, NumberFormat,
    testing::Values(TextRow{"US English", "en_US", "1,234,567"}, TextRow{"none", "", "1,234,567"},
                    TextRow{"C", "C", "1,234,567"}, TextRow{"C with codeset", "C.UTF-8", "1,234,567"},
                    TextRow{"POSIX", "POSIX", "1,234,567"}, TextRow{"ICU's C", "en_US_POSIX", "1,234,567"},
                    TextRow{"German with codeset and modifier", "de_DE.UTF-8@euro", "1.234.567"},
                    TextRow{"Swiss German", "de_CH", "1’234’567"},
                    TextRow{"French", "fr-FR", "1\u202F234\u202F567"},
                    TextRow{"nonsense", "!!", "1,234,567"}),
    rowName<testing::TestParamInfo<TextRow>>);

} // namespace

} // namespace tovik::test
