// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/Unicode.h"

#include "Rows.h"

#include <gmock/gmock.h>
#include <unicode/regex.h>
#include <unicode/utf16.h>

#include <random>
#include <set>

namespace tovik::test {

namespace {

constexpr UChar32 kLastCodePoint = 0x10FFFF;

class TrimRule : public testing::TestWithParam<TextRow> {};

TEST_P(TrimRule, takesWhiteSpaceFromBothEnds) {
    EXPECT_EQ(std::string(trimmed(std::string_view(GetParam().input))), GetParam().expected);
    EXPECT_EQ(toUtf8(trimmed(std::u16string_view(toUtf16(GetParam().input)))), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, TrimRule,
    testing::Values(TextRow{"nothing", "", ""}, TextRow{"only white space", " \t\r\n\v\f", ""},
                    TextRow{"inner white space stays", "  a \n b ", "a \n b"},
                    TextRow{"no-break space", "\u00A0a\u00A0", "a"},
                    TextRow{"next line", "\u0085a\u0085", "a"},
                    TextRow{"line and paragraph separators", "\u2028a\u2029", "a"},
                    TextRow{"ideographic and narrow spaces", "\u3000a\u202F\u205F\u2000", "a"},
                    TextRow{"unit separator stays", "\u001Fa\u001F", "\u001Fa\u001F"},
                    TextRow{"byte order mark stays", "\uFEFFa\uFEFF", "\uFEFFa\uFEFF"},
                    TextRow{"zero width space stays", "\u200Ba\u200B", "\u200Ba\u200B"},
                    TextRow{"emoji stays", " \U0001F600 ", "\U0001F600"}),
    rowName<testing::TestParamInfo<TextRow>>);

icu::RegexMatcher matcherOf(const char16_t* pattern) {
    UErrorCode status = U_ZERO_ERROR;
    return {icu::UnicodeString(pattern), 0, status};
}

TEST(Unicode, classesOfEveryCharacter_areThoseOfThePatternsTheyStandFor) {
    UErrorCode status = U_ZERO_ERROR;
    auto space = matcherOf(u"\\s");
    auto word = matcherOf(u"[\\p{Alphabetic}\\p{M}\\p{Nd}\\p{Pc}\\u200c\\u200d]");
    auto ignored = matcherOf(u"[\\p{Grapheme_Extend}\\p{Cf}]");
    for (UChar32 c = 0; c <= kLastCodePoint; ++c) {
        if (U_IS_SURROGATE(c)) {
            continue;
        }
        const icu::UnicodeString text(c);
        ASSERT_EQ(isWhiteSpace(c), space.reset(text).matches(status) != 0) << std::hex << c;
        ASSERT_EQ(isWordCharacter(c), word.reset(text).matches(status) != 0) << std::hex << c;
        ASSERT_EQ(isIgnoredAtBoundaries(c), ignored.reset(text).matches(status) != 0) << std::hex << c;
    }
    EXPECT_TRUE(U_SUCCESS(status));
}

TEST(IsWordBoundary, inRandomTexts_isWhereThePatternMatches) {
    const std::u16string_view kAlphabet[] = {u"a",      u"Z",      u"7",      u"_",      u" ",
                                             u"-",      u"'",      u"\u2019", u".",      u"\u0301",
                                             u"\u00AD", u"\u200D", u"\u4E2D", u"\u30AB", u"\U0001F600",
                                             u"\u00E9", u"\uFEFF", u"\n",     u"$",      u"\U0001D11E"};
    std::mt19937 random(7);
    std::uniform_int_distribution<std::size_t> pick(0, std::size(kAlphabet) - 1);
    auto boundary = matcherOf(u"\\b");
    for (int round = 0; round < 3000; ++round) {
        std::u16string text;
        std::set<std::size_t> starts{0};
        for (int i = 0; i < 8; ++i) {
            text += kAlphabet[pick(random)];
            starts.insert(text.size());
        }
        const icu::UnicodeString input(text.data(), static_cast<std::int32_t>(text.size()));
        UErrorCode status = U_ZERO_ERROR;
        std::set<std::size_t> expected;
        boundary.reset(input);
        while (boundary.find(status)) {
            expected.insert(static_cast<std::size_t>(boundary.start(status)));
        }
        std::set<std::size_t> found;
        std::copy_if(starts.begin(), starts.end(), std::inserter(found, found.end()),
                     [&](std::size_t position) { return isWordBoundary(text, position); });
        ASSERT_EQ(found, expected) << toUtf8(text);
    }
}

TEST(Pieces, betweenSeparators_leaveOutEmptyOnes) {
    EXPECT_THAT(pieces(u",a,, b ,", u','), testing::ElementsAre(u"a", u" b "));
    EXPECT_THAT(pieces(u"", u','), testing::IsEmpty());
    EXPECT_THAT(pieces(u"a\tb\u00A0c d", u' '), testing::ElementsAre(u"a\tb\u00A0c", u"d"));
}

using CountRow = Row<std::string, std::size_t>;
class CharacterCount : public testing::TestWithParam<CountRow> {};

TEST_P(CharacterCount, countsWhatAPersonSees) {
    EXPECT_EQ(characterCount(toUtf16(GetParam().input)), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Rows, CharacterCount,
                         testing::Values(CountRow{"nothing", "", 0}, CountRow{"letters", "abc", 3},
                                         CountRow{"combining accent", "e\u0301a", 2},
                                         CountRow{"flag", "\U0001F1EB\U0001F1F7", 1},
                                         CountRow{"family", "\U0001F468\u200D\U0001F469\u200D\U0001F467", 1},
                                         CountRow{"carriage return and line feed", "a\r\nb", 3},
                                         CountRow{"hangul syllable of jamo", "\u1112\u1161\u11AB", 1}),
                         rowName<testing::TestParamInfo<CountRow>>);

TEST(FirstCharacters, ofALongerText_areWholeCharacters) {
    EXPECT_EQ(firstCharacters("e\u0301e\u0301e\u0301", 2), "e\u0301e\u0301");
    EXPECT_EQ(firstCharacters("abc", 2), "ab");
}

TEST(FirstCharacters, ofAShorterText_areAllOfIt) {
    EXPECT_EQ(firstCharacters("e\u0301", 5), "e\u0301");
    EXPECT_EQ(firstCharacters("", 5), "");
}

} // namespace

} // namespace tovik::test
