// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Audio/CustomVocabulary.h"

#include "support/MemoryUserDefaults.h"

#include <gmock/gmock.h>

namespace tovik::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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
