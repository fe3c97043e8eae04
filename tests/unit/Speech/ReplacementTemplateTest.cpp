// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/ReplacementTemplate.h"

#include "Rows.h"
#include "Speech/Text/Utf16.h"

namespace tovik::test {

namespace {

class Template : public testing::TestWithParam<TextRow> {};

TEST_P(Template, forAMatchOfHello_inserts) {
    EXPECT_EQ(toUtf8(ReplacementTemplate(toUtf16(GetParam().input)).expanded(u"Hello")), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Template,
    testing::Values(TextRow{"nothing", "", ""}, TextRow{"plain text", "a b", "a b"},
                    TextRow{"the matched text", "$0!", "Hello!"},
                    TextRow{"the matched text twice", "$0 $0", "Hello Hello"},
                    TextRow{"groups that are not there", "a$1b$9c", "abc"},
                    TextRow{"only one digit names a group", "$10", "0"},
                    TextRow{"a digit behind the matched text", "$05", "Hello5"},
                    TextRow{"a dollar before a letter", "$x", "$x"},
                    TextRow{"a dollar at the end", "5 $", "5 $"}, TextRow{"two dollars", "$$0", "$Hello"},
                    TextRow{"braces mean nothing", "${0}", "${0}"}, TextRow{"a literal dollar", "\\$0", "$0"},
                    TextRow{"a literal backslash", "\\\\", "\\"},
                    TextRow{"a backslash before a letter", "\\n\\u0041", "nu0041"},
                    TextRow{"a backslash at the end", "a\\", "a\\"},
                    TextRow{"a backslash before a character of two units", "\\\U0001F600", "\U0001F600"},
                    TextRow{"a digit of another script", "$\u0660", "$\u0660"}),
    rowName<testing::TestParamInfo<TextRow>>);

TEST(ReplacementTemplate, whenTheMatchedTextLooksLikeATemplate_insertsItAsItStands) {
    EXPECT_EQ(ReplacementTemplate(u"<$0>").expanded(u"$0\\$1"), u"<$0\\$1>");
}

} // namespace

} // namespace tovik::test
