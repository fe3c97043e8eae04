// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Audio/DictationLanguage.h"
#include "support/MemoryUserDefaults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <set>

namespace tovik::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;

TEST(BuiltinVocabulary, beginsWithTheProgramAndHoldsFifteenDifferentTerms) {
    ASSERT_EQ(kBuiltinVocabulary.size(), 15U);
    EXPECT_EQ(kBuiltinVocabulary[0], "Tovik");
    EXPECT_EQ(kBuiltinVocabulary[1], "Tovik Record");
    const std::set<std::string_view> different(kBuiltinVocabulary.begin(), kBuiltinVocabulary.end());
    EXPECT_EQ(different.size(), 15U);
    EXPECT_THAT(different, Not(Contains("")));
}

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

TEST(CustomVocabulary, whenTheListHasBlanksAndRepeats_givesEachTermOnce) {
    MemoryUserDefaults defaults;
    defaults.set("CustomVocabulary", " foo, ,bar ,foo");
    EXPECT_THAT(CustomVocabulary::terms(defaults), ElementsAre("foo", "bar"));
}

TEST(CustomVocabulary, whenTheKeyIsAbsent_isEmpty) {
    EXPECT_THAT(CustomVocabulary::terms(MemoryUserDefaults()), IsEmpty());
}

TEST(CustomVocabulary, whenTheValueIsNoString_isEmpty) {
    MemoryUserDefaults defaults;
    defaults.set("CustomVocabulary", PropertyValue::array({"foo"}));
    EXPECT_THAT(CustomVocabulary::terms(defaults), IsEmpty());
}

TEST(CustomVocabulary, whenTermsDifferInCaseOrInnerSpace_keepsThemAll) {
    EXPECT_THAT(CustomVocabulary::parse("Foo,foo,\u00A0foo bar\n,,x"),
                ElementsAre("Foo", "foo", "foo bar", "x"));
}

} // namespace
} // namespace tovik::test
