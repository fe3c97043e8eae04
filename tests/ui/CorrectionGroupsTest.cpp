// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Corrections/CorrectionGroups.h"

#include <gmock/gmock.h>

namespace tovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(CorrectionGroups, ofNoCorrections_areNone) {
    EXPECT_THAT(correctionGroups({}), IsEmpty());
}

TEST(CorrectionGroups, whenTwoPhrasesHaveTheSameReplacement_areOneGroup) {
    EXPECT_THAT(
        correctionGroups({{"bot to bot", "Tovik"}, {"toe vic", "Tovik"}, {"brindle pad", "Brindlepad"}}),
        ElementsAre(CorrectionGroup{{"brindle pad"}, "Brindlepad"},
                    CorrectionGroup{{"bot to bot", "toe vic"}, "Tovik"}));
}

TEST(CorrectionGroups, areInTheOrderOfCodePoints) {
    const auto groups = correctionGroups(
        {{"1", "éclair"}, {"2", "apple"}, {"3", "Zebra"}, {"4", "zebra"}, {"5", "😀"}, {"6", "豆"}});
    std::vector<std::string> replacements;
    for (const auto& group : groups) {
        replacements.push_back(group.corrected);
    }
    EXPECT_THAT(replacements, ElementsAre("Zebra", "apple", "zebra", "éclair", "豆", "😀"));
}

TEST(CorrectionGroups, heardPhrasesOfAGroupAreInTheSameOrder) {
    const auto groups = correctionGroups({{"b", "x"}, {"a 10", "x"}, {"a 2", "x"}, {"B", "x"}});
    ASSERT_EQ(groups.size(), 1U);
    EXPECT_THAT(groups.front().heardValues, ElementsAre("B", "a 10", "a 2", "b"));
}

TEST(CorrectionGroups, replacementsThatDifferInCaseOnly_areTwoGroups) {
    EXPECT_EQ(correctionGroups({{"a", "tovik"}, {"b", "Tovik"}}).size(), 2U);
}

TEST(FreeHeardPhrase, isTheFirstThatIsNotTaken) {
    struct Row {
        const char* name;
        TranscriptionDictionary::Mapping mapping;
        const char* base;
        const char* expected;
    };
    const Row rows[] = {
        {"nothing taken", {}, "new phrase", "new phrase"},
        {"the base taken", {{"new phrase", "x"}}, "new phrase", "new phrase 2"},
        {"two taken", {{"new phrase", "x"}, {"new phrase 2", "y"}}, "new phrase", "new phrase 3"},
        {"a gap", {{"new phrase", "x"}, {"new phrase 3", "y"}}, "new phrase", "new phrase 2"},
        {"the base free", {{"new phrase 2", "x"}}, "new phrase", "new phrase"},
        {"another base", {{"new phrase", "x"}, {"variation", "x"}}, "variation", "variation 2"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(freeHeardPhrase(row.mapping, row.base), row.expected) << row.name;
    }
}

TEST(HeardPhrases, joinedAndTakenApart_areTheSame) {
    EXPECT_EQ(joinedHeardPhrases({"a b", "c"}), "a b\x1f"
                                                "c");
    EXPECT_THAT(heardPhrasesIn(joinedHeardPhrases({"a b", "c", "d"})), ElementsAre("a b", "c", "d"));
    EXPECT_THAT(heardPhrasesIn(joinedHeardPhrases({"a"})), ElementsAre("a"));
}

TEST(HeardPhrases, emptyOnes_areDropped) {
    EXPECT_THAT(heardPhrasesIn(""), IsEmpty());
    EXPECT_THAT(heardPhrasesIn("\x1f"), IsEmpty());
    EXPECT_THAT(heardPhrasesIn("\x1f"
                               "a\x1f\x1f"
                               "b\x1f"),
                ElementsAre("a", "b"));
}

} // namespace
} // namespace tovik
