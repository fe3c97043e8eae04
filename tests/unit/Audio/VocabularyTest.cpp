// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Audio/Vocabulary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <set>

namespace tovik {
namespace {

using testing::Contains;
using testing::ElementsAreArray;
using testing::Not;

TEST(BuiltinVocabulary, beginsWithTheProgramAndHoldsFifteenDifferentTerms) {
    ASSERT_EQ(kBuiltinVocabulary.size(), 15U);
    EXPECT_EQ(kBuiltinVocabulary[0], "Tovik");
    EXPECT_EQ(kBuiltinVocabulary[1], "Tovik Record");
    const std::set<std::string_view> different(kBuiltinVocabulary.begin(), kBuiltinVocabulary.end());
    EXPECT_EQ(different.size(), 15U);
    EXPECT_THAT(different, Not(Contains("")));
}

struct TermsRow {
    const char* name;
    const char* list;
    std::vector<std::string> terms;
};

std::ostream& operator<<(std::ostream& out, const TermsRow& row) {
    return out << row.name;
}

class CustomVocabularyTerms : public testing::TestWithParam<TermsRow> {};

TEST_P(CustomVocabularyTerms, areThePiecesBetweenCommas) {
    EXPECT_THAT(customVocabularyTerms(GetParam().list), ElementsAreArray(GetParam().terms));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, CustomVocabularyTerms,
    testing::Values(TermsRow{"Nothing", "", {}}, TermsRow{"OnlyCommas", ",,,", {}},
                    TermsRow{"OnlyBlanks", " ", {}}, TermsRow{"One", "foo", {"foo"}},
                    TermsRow{"BlanksAround", "  foo\t", {"foo"}},
                    TermsRow{"BlanksWithin", "foo  bar", {"foo  bar"}},
                    TermsRow{"EmptyPieces", "foo, ,bar ,foo", {"foo", "bar", "foo"}},
                    TermsRow{"LineBreaks", "\nfoo\r\n,bar\n", {"foo", "bar"}},
                    TermsRow{"CommasAtTheEnds", ",foo,bar,", {"foo", "bar"}},
                    TermsRow{"NoBreakAndIdeographicSpaces", "\u00A0foo\u3000,\u2028bar", {"foo", "bar"}},
                    TermsRow{"OtherScripts", " Grüße , 東京 ", {"Grüße", "東京"}},
                    TermsRow{"BrokenUtf8AtTheEnds", " \xff\xfe , \xc3", {"\xff\xfe", "\xc3"}}),
    [](const auto& row) { return row.param.name; });

TEST(ContextualStrings, whenTheUserHasNoTerms_areTheBuiltinOnes) {
    EXPECT_THAT(contextualStrings({}), ElementsAreArray(kBuiltinVocabulary));
}

TEST(ContextualStrings, whenTermsComeTwice_holdThemOnce) {
    const auto terms = contextualStrings({"foo", "bar", "foo", "Tovik"});
    EXPECT_EQ(terms.size(), 17U);
    EXPECT_EQ(std::set<std::string>(terms.begin(), terms.end()).size(), 17U);
    EXPECT_THAT(terms, Contains("foo"));
    EXPECT_THAT(terms, Contains("bar"));
}

TEST(ContextualStrings, whenATermDiffersInCase_holdBoth) {
    const auto terms = contextualStrings({"tovik"});
    EXPECT_THAT(terms, Contains("tovik"));
    EXPECT_THAT(terms, Contains("Tovik"));
}

} // namespace
} // namespace tovik
