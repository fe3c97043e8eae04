// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/PunctuationSpacing.h"

#include "Rows.h"
#include "Speech/Text/Utf16.h"

namespace tovik::test {

namespace {

class SpacedPunctuation : public testing::TestWithParam<TextRow> {};

TEST_P(SpacedPunctuation, isAsExpected) {
    EXPECT_EQ(toUtf8(withSpacedPunctuation(toUtf16(GetParam().input))), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, SpacedPunctuation,
    testing::Values(
        TextRow{"dots collapse", "Wait...what", "Wait. what"},
        TextRow{"a decimal point is a full stop", "3.14", "3. 14"}, TextRow{"comma", "a,b", "a, b"},
        TextRow{"a clock is not spared", "It is 10:30", "It is 10: 30"},
        TextRow{"every mark", "a!b?c:d;e,f.g", "a! b? c: d; e, f. g"},
        TextRow{"spaces collapse", "a   b", "a b"},
        TextRow{"tabs and line feeds stay", "a \t b\n\n c", "a \t b\n\n c"},
        TextRow{"no-break spaces stay and count as white space", "a,\u00A0\u00A0b", "a,\u00A0\u00A0b"},
        TextRow{"a mark at the end stays", "a.", "a."}, TextRow{"marks of two kinds", "a?!b", "a? ! b"},
        TextRow{"three of one mark pair up", "a!!!b", "a! !! b"},
        TextRow{"four of one mark", "a!!!!b", "a! !! !b"},
        TextRow{"a dot before other marks", "a.,b", "a. , b"},
        TextRow{"a character of two units moves whole", "a.\U0001F600", "a. \U0001F600"},
        TextRow{"p.m.", "at nine p.m.", "at nine p. m."}, TextRow{"only dots", "....", "."},
        TextRow{"leading and trailing spaces collapse only", "  a  ", " a "}),
    rowName<testing::TestParamInfo<TextRow>>);

class Tidied : public testing::TestWithParam<TextRow> {};

TEST_P(Tidied, isAsExpected) {
    EXPECT_EQ(toUtf8(tidied(toUtf16(GetParam().input))), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Rows, Tidied,
                         testing::Values(TextRow{"spaces before a mark go", "a , b ! c", "a, b! c"},
                                         TextRow{"any white space before a mark goes", "a \t\n\u00A0.b",
                                                 "a.b"},
                                         TextRow{"marks after marks", "a , . !", "a,.!"},
                                         TextRow{"spaces collapse", "a   b", "a b"},
                                         TextRow{"tabs do not collapse", "a\t\tb", "a\t\tb"},
                                         TextRow{"ends are trimmed", "\u0085 a \u00A0", "a"},
                                         TextRow{"a text that begins with a mark", "  , a", ", a"},
                                         TextRow{"nothing is left", " \n ", ""}),
                         rowName<testing::TestParamInfo<TextRow>>);

} // namespace

} // namespace tovik::test
