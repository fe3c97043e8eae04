// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Corrections/CorrectionsEditor.h"

#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace tovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

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

struct CorrectionsEditorTest : testing::Test {
    test::MemoryUserDefaults defaults;
    test::RecordingLog log;
    TranscriptionDictionary dictionary{defaults, log};
    /// "reload" and the texts of toasts.
    std::vector<std::string> calls;
    std::optional<std::string> focusAtReload;
    CorrectionsEditor editor{dictionary,
                             defaults,
                             {[this] {
                                  calls.emplace_back("reload");
                                  focusAtReload = editor.takePendingCorrectionFocus();
                              },
                              [this](const std::string& text) { calls.push_back(text); }}};

    void start(const TranscriptionDictionary::Mapping& mapping) { dictionary.setDictionary(mapping); }
    [[nodiscard]] TranscriptionDictionary::Mapping stored() const {
        return defaults.value(TranscriptionDictionary::dictionaryKey)
            ->get<TranscriptionDictionary::Mapping>();
    }
};

TEST_F(CorrectionsEditorTest, atFirst_showsTheSeedByReplacement) {
    EXPECT_THAT(editor.groups(), ElementsAre(CorrectionGroup{{"brindle pad"}, "Brindlepad"},
                                             CorrectionGroup{{"quill on a i"}, "Quillon AI"},
                                             CorrectionGroup{{"bot to bot"}, "Tovik Record"}));
}

TEST_F(CorrectionsEditorTest, addingACorrection_takesTheFirstFreePhraseAndFocusesIt) {
    start({{"new phrase", "a"}, {"new phrase 2", "b"}});
    editor.addCorrectionRow();
    EXPECT_EQ(stored().at("new phrase 3"), "Replacement");
    EXPECT_THAT(calls, ElementsAre("reload", "Correction added"));
    EXPECT_EQ(focusAtReload, "new phrase 3");
}

TEST_F(CorrectionsEditorTest, theNewField_getsTheFocusOnce) {
    editor.addCorrectionRow();
    EXPECT_EQ(focusAtReload, "new phrase");
    EXPECT_FALSE(editor.takePendingCorrectionFocus());
}

TEST_F(CorrectionsEditorTest, addingAVariation_mapsTheFirstFreeOneToTheGroupsReplacement) {
    start({{"a", "Alpha"}, {"variation", "Beta"}});
    editor.addHeardPhraseToCorrection("Alpha");
    EXPECT_EQ(stored().at("variation 2"), "Alpha");
    EXPECT_THAT(calls, ElementsAre("reload", "Variation added"));
    EXPECT_EQ(focusAtReload, "variation 2");
}

TEST_F(CorrectionsEditorTest, renamingAPhrase_storesItTrimmedAndInLowerCase) {
    start({{"a", "Alpha"}});
    editor.heardCorrectionFieldChanged("a", "Alpha", " \tHello World\n");
    EXPECT_THAT(stored(), ElementsAre(Pair("hello world", "Alpha")));
    EXPECT_THAT(calls, ElementsAre("reload", "Correction saved"));
}

TEST_F(CorrectionsEditorTest, renamingAPhrase_isOneWrite) {
    start({{"a", "Alpha"}});
    const auto before = defaults.writes().size();
    editor.heardCorrectionFieldChanged("a", "Alpha", "b");
    EXPECT_EQ(defaults.writes().size(), before + 1);
}

TEST_F(CorrectionsEditorTest, renamingAPhraseToAnother_takesOverItsEntry) {
    start({{"a", "Alpha"}, {"b", "Beta"}});
    editor.heardCorrectionFieldChanged("a", "Alpha", "B");
    EXPECT_THAT(stored(), ElementsAre(Pair("b", "Alpha")));
}

TEST_F(CorrectionsEditorTest, renamingAPhraseToItself_keepsItAndSaysSo) {
    start({{"a", "Alpha"}});
    editor.heardCorrectionFieldChanged("a", "Alpha", "A");
    EXPECT_THAT(stored(), ElementsAre(Pair("a", "Alpha")));
    EXPECT_THAT(calls, ElementsAre("reload", "Correction saved"));
}

TEST_F(CorrectionsEditorTest, renamingAPhraseThatWasStoredWithCapitals_leavesNothingBehind) {
    start({{"Alfa", "Alpha"}});
    editor.heardCorrectionFieldChanged("Alfa", "Alpha", "alfa romeo");
    EXPECT_THAT(stored(), ElementsAre(Pair("alfa romeo", "Alpha")));
}

TEST_F(CorrectionsEditorTest, clearingAPhrase_deletesThatVariationOnly) {
    start({{"a", "Alpha"}, {"b", "Alpha"}});
    editor.heardCorrectionFieldChanged("a", "Alpha", "  ");
    EXPECT_THAT(stored(), ElementsAre(Pair("b", "Alpha")));
    EXPECT_THAT(calls, ElementsAre("reload", "Correction deleted"));
}

TEST_F(CorrectionsEditorTest, changingAReplacement_changesItForEveryPhraseOfTheGroup) {
    start({{"a", "Alpha"}, {"b", "Alpha"}, {"c", "Gamma"}});
    editor.correctionFieldChanged("a\x1f"
                                  "b",
                                  " Álfa ");
    EXPECT_THAT(stored(), ElementsAre(Pair("a", "Álfa"), Pair("b", "Álfa"), Pair("c", "Gamma")));
    EXPECT_THAT(calls, ElementsAre("reload", "Correction saved"));
}

TEST_F(CorrectionsEditorTest, changingAReplacementToThatOfAnotherGroup_joinsTheGroups) {
    start({{"a", "Alpha"}, {"b", "Beta"}});
    editor.correctionFieldChanged("a", "Beta");
    EXPECT_THAT(editor.groups(), ElementsAre(CorrectionGroup{{"a", "b"}, "Beta"}));
}

TEST_F(CorrectionsEditorTest, clearingAReplacement_deletesTheWholeGroupAtOnce) {
    start({{"a", "Alpha"}, {"b", "Alpha"}, {"c", "Gamma"}});
    const auto before = defaults.writes().size();
    editor.correctionFieldChanged("a\x1f"
                                  "b",
                                  " ");
    EXPECT_THAT(stored(), ElementsAre(Pair("c", "Gamma")));
    EXPECT_THAT(calls, ElementsAre("reload", "Correction deleted"));
    EXPECT_EQ(defaults.writes().size(), before + 1);
}

TEST_F(CorrectionsEditorTest, changingTheReplacementOfNoPhrases_storesNothing) {
    const auto before = defaults.writes().size();
    editor.correctionFieldChanged("", "Beta");
    EXPECT_EQ(defaults.writes().size(), before);
    EXPECT_THAT(calls, ElementsAre("reload", "Correction saved"));
}

TEST_F(CorrectionsEditorTest, deletingACorrection_deletesAllItsPhrases) {
    start({{"a", "Alpha"}, {"b", "Alpha"}, {"c", "Gamma"}});
    editor.removeCorrectionRow("a\x1f"
                               "b");
    EXPECT_THAT(stored(), ElementsAre(Pair("c", "Gamma")));
    EXPECT_THAT(calls, ElementsAre("reload", "Correction deleted"));
}

TEST_F(CorrectionsEditorTest, deletingTheLastCorrection_leavesAnEmptyDictionary) {
    start({{"a", "Alpha"}});
    editor.removeHeardPhrase("a");
    EXPECT_THAT(stored(), IsEmpty());
    EXPECT_THAT(editor.groups(), IsEmpty());
    EXPECT_THAT(calls, ElementsAre("reload", "Correction deleted"));
}

TEST_F(CorrectionsEditorTest, aLibraryOfCorrections_replacesThemAndBecomesTheVocabulary) {
    editor.customLibraryChanged("a → Alpha, Kubernetes");
    EXPECT_EQ(defaults.string("CustomVocabulary"), "a → Alpha, Kubernetes");
    EXPECT_THAT(stored(), ElementsAre(Pair("a", "Alpha")));
    EXPECT_THAT(calls, ElementsAre("reload", "Corrections saved"));
}

TEST_F(CorrectionsEditorTest, everyEdit_isWhatTheNextTranscriptGets) {
    editor.addCorrectionRow();
    editor.heardCorrectionFieldChanged("new phrase", "Replacement", "cooper netties");
    editor.correctionFieldChanged("cooper netties", "Kubernetes");
    EXPECT_EQ(dictionary.apply("Cooper netties runs"), "Kubernetes runs");
}

} // namespace
} // namespace tovik
