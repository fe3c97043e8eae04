// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/PocketSphinx/ContextualVocabulary.h"

#include <gmock/gmock.h>

#include <map>

namespace tovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> pronounce(const std::string& term) {
    const std::map<std::string, std::string> dictionary{
        {"record", "R AH K AO R D"},
        {"record(2)", "R EH K ER D"},
        {"mute", "M Y UW T"},
        {"un", "AH N"},
        {"drop", "D R AA P"},
        {"box", "B AA K S"},
        {"get", "G EH T"},
        {"hub", "HH AH B"},
        {"two", "T UW"},
        {"web", "W EH B"},
        {"parser", "P AA R S ER"},
        {"nasa", "N AE S AH"},
    };
    const TermPronouncer pronouncer([&](const std::string& word) -> std::optional<std::string> {
        const auto found = dictionary.find(word);
        return found == dictionary.end() ? std::nullopt : std::optional(found->second);
    });
    return pronouncer.pronounce(term);
}

TEST(TermPronouncer, whenTheDictionaryHasTheWord_takesAllItsWays) {
    EXPECT_THAT(pronounce("Record"), ElementsAre("R AH K AO R D", "R EH K ER D"));
}

TEST(TermPronouncer, whenTheWordIsUnknown_usesTheRulesOfSpelling) {
    EXPECT_THAT(pronounce("Tovik"), ElementsAre("T OW V IH K"));
    EXPECT_THAT(pronounce("Figma"), ElementsAre("F IH G M AH"));
    EXPECT_THAT(pronounce("Trello"), ElementsAre("T R EH L OW"));
    EXPECT_THAT(pronounce("making"), ElementsAre("M EY K IH NG"));
    EXPECT_THAT(pronounce("don't"), ElementsAre("D AA N T"));
}

TEST(TermPronouncer, whenTheRulesGetANameOfTheProgramsWrong_knowsBetter) {
    EXPECT_THAT(pronounce("Jira"), ElementsAre("JH IH R AH"));
}

TEST(TermPronouncer, whenTheTermIsAPhrase_saysItsWordsInARow) {
    EXPECT_THAT(pronounce("Tovik Record"),
                ElementsAre("T OW V IH K R AH K AO R D", "T OW V IH K R EH K ER D"));
}

TEST(TermPronouncer, whenTwoKnownWordsMakeTheWord_saysThoseFirst) {
    EXPECT_EQ(pronounce("Dropbox").front(), "D R AA P B AA K S");
    EXPECT_EQ(pronounce("unmute").front(), "AH N M Y UW T");
}

TEST(TermPronouncer, whenTheWordHasHumps_saysEachHump) {
    EXPECT_EQ(pronounce("GetHub").front(), "G EH T HH AH B");
    EXPECT_EQ(pronounce("PBXParser").front(), "P IY B IY EH K S P AA R S ER");
}

TEST(TermPronouncer, whenTheWordIsAnAbbreviation_spellsItOut) {
    EXPECT_THAT(pronounce("PBX"), ElementsAre("P IY B IY EH K S"));
    EXPECT_THAT(pronounce("AWQ"), ElementsAre("EY D AH B AH L Y UW K Y UW"));
}

TEST(TermPronouncer, whenTheAbbreviationIsAWord_saysTheWord) {
    EXPECT_THAT(pronounce("NASA"), ElementsAre("N AE S AH"));
}

TEST(TermPronouncer, whenThereAreDigits_saysEachOne) {
    EXPECT_THAT(pronounce("Web2"), ElementsAre("W EH B T UW"));
}

TEST(TermPronouncer, whenThereIsNothingToSay_givesNoPronunciation) {
    EXPECT_THAT(pronounce(""), IsEmpty());
    EXPECT_THAT(pronounce(" - "), IsEmpty());
    EXPECT_THAT(pronounce("日本"), IsEmpty());
}

} // namespace
} // namespace tovik
