// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/FinalTextChain.h"
#include "Speech/Text/TranscriptionDictionary.h"
#include "Speech/Text/Unicode.h"
#include "support/MemoryUserDefaults.h"
#include "support/PlainTextRules.h"
#include "support/RecordingLog.h"

#include <gmock/gmock.h>
#include <unicode/unistr.h>
#include <unicode/utf16.h>

#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <vector>

// On random texts the program's text rules say what their plain reading says. The texts are made of parts
// that the rules care about, so that most of them make some rule act.

namespace tovik::test {

namespace {

using Parts = std::vector<std::string>;

class RandomText {
public:
    explicit RandomText(unsigned seed) : random_(seed) {}

    std::size_t number(std::size_t from, std::size_t to) {
        return std::uniform_int_distribution<std::size_t>(from, to)(random_);
    }
    const std::string& oneOf(const Parts& parts) { return parts[number(0, parts.size() - 1)]; }

    std::string of(const Parts& parts, std::size_t most) {
        std::string text;
        for (auto count = number(0, most); count > 0; --count) {
            text += oneOf(parts);
        }
        return text;
    }
    /// Words and what stands between them, in turn.
    std::string of(const Parts& words, const Parts& between, std::size_t most) {
        std::string text;
        for (auto count = number(0, most); count > 0; --count) {
            text += oneOf(words);
            text += oneOf(between);
        }
        return text;
    }

private:
    std::mt19937 random_;
};

const Parts kSpoken{"one",         "two",
                    "six",         "ten",
                    "eleven",      "twelve",
                    "nineteen",    "seventeen",
                    "twenty",      "thirty",
                    "ninety",      "fifty",
                    "hundred",     "thousand",
                    "billion",     "zero",
                    "dollars",     "dollar",
                    "dollars",     "and",
                    "cents",       "cent",
                    "oh",          "AM",
                    "pm",          "a.m.",
                    "p.m.x",       "o'clock",
                    "march",       "May",
                    "august",      "the",
                    "The",         "first",
                    "second",      "sixth",
                    "sixteenth",   "twentieth",
                    "of",          "place",
                    "time",        "floors",
                    "times",       "Five",
                    "SEVEN",       "\u017Fix",
                    "ﬁve",         "ﬁrst",
                    "cent\u017F",  "dollar\u017F",
                    "augu\u017Ft", "o'cloc\u212A",
                    "x",           "\u00E9",
                    "two\u0301",   "$",
                    "sixtyx",      "thousand\u017F",
                    "ﬁrﬆ",         "twentyten",
                    "um",          "kind of"};
const Parts kBetween{" ",  " ",  " ",      " ",  " ", "  ", "-", "-",      "--",     " - ", "",
                     "\t", "\n", "\u00A0", ", ", ".", "'",  "_", "\u0301", "\u00AD", "$",   " \u2003"};
const Parts kMarks{".", ".",  "!",  "?",  ":",          ";",      ",",      " ",
                   " ", "  ", "\t", "\n", "\u00A0",     "\u0085", "\u200B", "\u001F",
                   "a", "b",  "um", "é",  "\U0001F600", "\u0301", "\uFEFF"};
const Parts kPhraseParts{"a",
                         "b",
                         "A",
                         "ab",
                         "foo",
                         "Bar",
                         " ",
                         " ",
                         "ss",
                         "ß",
                         "ﬁ",
                         "fi",
                         "f",
                         "s",
                         "\u017F",
                         "K",
                         "\u212A",
                         "σ",
                         "ς",
                         "Σ",
                         "é",
                         "e\u0301",
                         "\u0301",
                         "'",
                         "+",
                         "-",
                         ".",
                         "中",
                         "İ",
                         "i\u0307",
                         "ı",
                         "I",
                         "\U00010400",
                         "\U00010428",
                         "\U0001F600",
                         "_",
                         "1",
                         "\u00AD",
                         "$",
                         "\\",
                         "\u200D",
                         "\u1F88",
                         "\u1F00\u03B9",
                         "\u01F0",
                         "j\u030C",
                         "J",
                         "\u030C",
                         "\u0390",
                         "\u0399\u0308\u0301"};
const Parts kReplacementParts{"a", "b", "foo", " ", "$0", "$1", "$", "\\", "\\$", "0", "ß", "X"};

class PlainReadingOnRandomTexts : public testing::TestWithParam<unsigned> {
protected:
    static constexpr int kRounds = 1500;

    RandomText random{GetParam()};
    MemoryUserDefaults defaults;
    RecordingLog log;

    void TearDown() override { EXPECT_THAT(log.printed(), testing::IsEmpty()); }
};

TEST_P(PlainReadingOnRandomTexts, ofCorrections_givesTheSameText) {
    for (int round = 0; round < kRounds; ++round) {
        plain::Mapping mapping;
        for (auto count = random.number(1, 8); count > 0; --count) {
            mapping[random.of(kPhraseParts, 4)] = random.of(kReplacementParts, 4);
        }
        const auto text = random.of(kPhraseParts, 16);
        defaults.set(TranscriptionDictionary::dictionaryKey, mapping);
        TranscriptionDictionary dictionary(defaults, log);
        ASSERT_EQ(dictionary.apply(text), plain::applyCorrections(text, mapping))
            << text << "\n"
            << PropertyValue(mapping).dump();
    }
}

TEST_P(PlainReadingOnRandomTexts, ofTheDisplayString_givesTheSameMapping) {
    const Parts parts{"a", "B", "=", "→", ",", " ", "\n", "\u00A0", "İ", "Σ", "\u001F"};
    for (int round = 0; round < kRounds; ++round) {
        const auto text = random.of(parts, 12);
        ASSERT_EQ(TranscriptionDictionary::parseDisplayString(text), plain::parseDisplayString(text)) << text;
    }
}

TEST_P(PlainReadingOnRandomTexts, ofPunctuationSpacing_givesTheSameText) {
    for (int round = 0; round < kRounds; ++round) {
        const auto text = random.of(kMarks, 16);
        ASSERT_EQ(toUtf8(withSpacedPunctuation(toUtf16(text))), plain::spacePunctuation(text)) << text;
    }
}

TEST_P(PlainReadingOnRandomTexts, ofFillerRemoval_givesTheSameText) {
    defaults.set(FillerWords::removeKey, true);
    FillerWords words(defaults);
    for (int round = 0; round < kRounds; ++round) {
        std::string list = "a";
        for (auto count = random.number(0, 5); count > 0; --count) {
            list += "," + random.of(kPhraseParts, 3);
        }
        const auto text = random.of(kPhraseParts, 8) + random.of(kMarks, 12);
        defaults.set(FillerWords::listKey, list);
        ASSERT_EQ(words.removeConfiguredFillerWords(text),
                  plain::removeFillerWords(text, words.fillerWords()))
            << text << "\n"
            << list;
    }
}

TEST_P(PlainReadingOnRandomTexts, ofSpokenForms_givesTheSameText) {
    const TranscriptionFormatter formatter(defaults, log, "en_US");
    for (int round = 0; round < kRounds; ++round) {
        const auto text = random.of(kSpoken, kBetween, 14);
        ASSERT_EQ(formatter.apply(text), plain::formatSpokenForms(text)) << text;
    }
}

TEST_P(PlainReadingOnRandomTexts, ofSpokenNumbersDaysAndYears_givesTheSameNumber) {
    const Parts words{"one",       "nineteen", "twenty", "thirty", "ninety", "hundred",
                      "thousand",  "million",  "oh",     "five",   "first",  "ninth",
                      "thirtieth", "Twenty",   "x",      "-",      "\t",     "\u017Fix"};
    for (int round = 0; round < kRounds; ++round) {
        const auto text = random.of(words, {" ", " ", "-", "  ", ""}, 4);
        const auto utf16 = toUtf16(text);
        ASSERT_EQ(TranscriptionFormatter::parseSpokenNumber(utf16), plain::parseSpokenNumber(text)) << text;
        ASSERT_EQ(TranscriptionFormatter::parseDayOrdinal(utf16), plain::parseDayOrdinal(text)) << text;
        ASSERT_EQ(TranscriptionFormatter::parseSpokenYear(utf16), plain::parseSpokenYear(text)) << text;
    }
}

TEST_P(PlainReadingOnRandomTexts, ofTheWholeChain_givesTheSameText) {
    defaults.set(FillerWords::removeKey, true);
    FinalTextChain chain(defaults, log, "en_US");
    for (int round = 0; round < kRounds; ++round) {
        const auto text =
            random.of(kSpoken, kBetween, 10) + random.of(kMarks, 3) + random.of(kSpoken, kBetween, 4);
        ASSERT_EQ(chain.processTranscription(text),
                  plain::processTranscription(text, std::string(FillerWords::defaultList)))
            << text;
    }
}

/// Whatever a character folds to finds it, and it finds that; but only where the plain reading says so.
TEST(PlainReading, ofEveryCharacterThatFolds_givesTheSameText) {
    MemoryUserDefaults defaults;
    RecordingLog log;
    const auto check = [&](const std::u16string& heard, const std::u16string& text) {
        const plain::Mapping mapping{{toUtf8(heard), "<$0>"}};
        defaults.set(TranscriptionDictionary::dictionaryKey, mapping);
        const auto utf8 = toUtf8(text);
        ASSERT_EQ(TranscriptionDictionary(defaults, log).apply(utf8), plain::applyCorrections(utf8, mapping))
            << toUtf8(heard) << " in " << utf8;
    };
    int checked = 0;
    for (UChar32 c = 0x80; c <= 0x1FFFF; ++c) {
        const icu::UnicodeString character(c);
        const std::u16string text(character.getBuffer(), static_cast<std::size_t>(character.length()));
        const auto folded = caseFolded(text);
        if (U_IS_SURROGATE(c) || folded == text) {
            continue;
        }
        ++checked;
        const auto all = text + u" " + folded + u" " + upperCased(text) + u" " + lowerCased(text);
        check(text, all);
        check(folded, all);
        check(folded.substr(0, 1), all);
        check(upperCased(text), all);
        check(u"x " + text + u"y", u"x " + folded + u"y");
    }
    EXPECT_GT(checked, 1300);
}

INSTANTIATE_TEST_SUITE_P(Seeds, PlainReadingOnRandomTexts, testing::Values(1U, 2U, 3U));

} // namespace

} // namespace tovik::test
