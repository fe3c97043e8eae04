// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/UserCharacters.h"

#include "Rows.h"
#include "Speech/History/TranscriptTitle.h"

namespace tovik::test {

namespace {

using CountRow = Row<std::string, std::size_t>;
class CharacterCount : public testing::TestWithParam<CountRow> {};

TEST_P(CharacterCount, countsWhatAPersonSees) {
    EXPECT_EQ(characterCount(GetParam().input), GetParam().expected);
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

std::string repeated(const std::string& text, int times) {
    std::string result;
    for (int i = 0; i < times; ++i) {
        result += text;
    }
    return result;
}

class Title : public testing::TestWithParam<TextRow> {};

TEST_P(Title, isOneShortLine) {
    EXPECT_EQ(transcriptTitle(GetParam().input), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Title,
    testing::Values(
        TextRow{"short text", "hello", "hello"},
        TextRow{"42 characters are whole", repeated("a", 42), repeated("a", 42)},
        TextRow{"43 characters are cut to 42", repeated("a", 43), repeated("a", 42) + "..."},
        TextRow{"42 combined characters are whole", repeated("e\u0301", 42), repeated("e\u0301", 42)},
        TextRow{"43 combined characters are cut", repeated("e\u0301", 43), repeated("e\u0301", 42) + "..."},
        TextRow{"flags are one each", repeated("\U0001F1EB\U0001F1F7", 43),
                repeated("\U0001F1EB\U0001F1F7", 42) + "..."},
        TextRow{"line feeds become spaces", "one\ntwo\n\nthree", "one two  three"},
        TextRow{"ends are trimmed before counting", "\n " + repeated("a", 42) + " \n", repeated("a", 42)},
        TextRow{"a cut title may end in a space", repeated("a", 41) + " bc", repeated("a", 41) + " ..."},
        TextRow{"white space only", " \n ", ""}),
    rowName<testing::TestParamInfo<TextRow>>);

} // namespace

} // namespace tovik::test
