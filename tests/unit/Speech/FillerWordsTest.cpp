// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Rows.h"
#include "Speech/Text/FinalTextChain.h"
#include "support/MemoryUserDefaults.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

namespace tovik::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto kRemoveKey = "TovikVoiceRemoveFillerWords";
constexpr auto kListKey = "TovikVoiceFillerWords";
constexpr auto kDefault = "kind of, sort of, um, uh, erm, hmm";
constexpr auto kStale = "you know, I mean, kind of, sort of, um, uh, erm, hmm";
constexpr auto kOtherStale = "you know, i mean, kind of, sort of, um, uh, erm, hmm";

struct Fillers {
    MemoryUserDefaults defaults;
    FillerWords words{defaults};

    std::string removedWithList(const PropertyValue& list, const std::string& text) {
        defaults.set(kRemoveKey, true);
        defaults.set(kListKey, list);
        return words.removeConfiguredFillerWords(text);
    }
};

class WithDefaultList : public testing::TestWithParam<TextRow> {};

TEST_P(WithDefaultList, removesFillers) {
    Fillers fillers;
    fillers.defaults.set(kRemoveKey, true);
    EXPECT_EQ(fillers.words.removeConfiguredFillerWords(GetParam().input), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, WithDefaultList,
    testing::Values(TextRow{"inside a sentence", "So um I think", "So I think"},
                    TextRow{"the comma after a filler stays", "I, uh, think so.", "I,, think so."},
                    TextRow{"a leading comma stays", "Um, so I think", ", so I think"},
                    TextRow{"two words", "It was kind of hard", "It was hard"},
                    TextRow{"written as one word it is none", "kindof", "kindof"},
                    TextRow{"a longer word is none", "Hmmm", "Hmmm"}, TextRow{"any case", "UH what", "what"},
                    TextRow{"nothing but fillers", "Um uh ERM", ""},
                    TextRow{"tidying without a filler", " a  b , c ", "a b, c"},
                    TextRow{"white space of all kinds is trimmed", "\u00A0um a\u0085", "a"},
                    TextRow{"two spaces inside a filler are not it", "kind  of hard", "kind of hard"},
                    TextRow{"a filler with a mark on it is none", "um\u0301 a", "um\u0301 a"},
                    TextRow{"a filler before an apostrophe is one", "um's a", "'s a"}),
    rowName<testing::TestParamInfo<TextRow>>);

using ListRow = Row<std::pair<PropertyValue, std::string>, std::string>;
class WithOwnList : public testing::TestWithParam<ListRow> {};

TEST_P(WithOwnList, removesFillersAndWritesNothing) {
    Fillers fillers;
    EXPECT_EQ(fillers.removedWithList(GetParam().input.first, GetParam().input.second), GetParam().expected);
    EXPECT_THAT(fillers.defaults.writes(), ElementsAre(kRemoveKey, kListKey));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, WithOwnList,
    testing::Values(
        ListRow{"a list without entries changes nothing", {" , ,  ", " a  b um , c "}, " a  b um , c "},
        ListRow{"an empty list is the default", {"", "um a"}, "a"},
        ListRow{"a blank list is the default", {" \u00A0\n", "um a"}, "a"},
        ListRow{"a stale list is the default", {kStale, "you know um a"}, "you know a"},
        ListRow{"the other stale list is the default", {kOtherStale, "I mean um a"}, "I mean a"},
        ListRow{"a stale list with space around it",
                {std::string(" ") + kStale + "\n", "you know um"},
                "you know"},
        ListRow{"a list of another type is the default", {PropertyValue::array({"x"}), "x um"}, "x"},
        ListRow{"own words", {"like , basically", "um like it is Basically fine"}, "um it is fine"},
        ListRow{"longest first", {"kind, kind of", "kind of a kind word"}, "a word"},
        ListRow{"length is counted in characters",
                {"e\u0301 e\u0301, abcd e", "abcd e\u0301 e\u0301 abcd e"},
                "abcd"},
        ListRow{"duplicates do no harm", {"um, um, UM", "um a"}, "a"},
        ListRow{"signs are literal", {"a.b", "axb a.b c"}, "axb c"},
        ListRow{"entries trimmed of no-break space", {"\u00A0like\u00A0,x", "like this"}, "this"}),
    rowName<testing::TestParamInfo<ListRow>>);

class Tidied : public testing::TestWithParam<TextRow> {};

TEST_P(Tidied, isAsExpected) {
    Fillers fillers;
    EXPECT_EQ(fillers.removedWithList("not there", GetParam().input), GetParam().expected);
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

using OffRow = Row<PropertyValue, int>;
class SwitchedOff : public testing::TestWithParam<OffRow> {};

TEST_P(SwitchedOff, leavesTheTextAlone) {
    Fillers fillers;
    fillers.defaults.set(kRemoveKey, GetParam().input);
    EXPECT_FALSE(fillers.words.cleanupEnabled());
    EXPECT_EQ(fillers.words.removeConfiguredFillerWords("  so um  , yeah "), "  so um  , yeah ");
}

INSTANTIATE_TEST_SUITE_P(Rows, SwitchedOff,
                         testing::Values(OffRow{"false", false, 0}, OffRow{"the string true", "true", 0},
                                         OffRow{"the number one", 1, 0}, OffRow{"null", nullptr, 0},
                                         OffRow{"list", PropertyValue::array({true}), 0}),
                         rowName<testing::TestParamInfo<OffRow>>);

TEST(FillerWords, whenNothingIsStored_areOffAndTheDefaultList) {
    Fillers fillers;
    EXPECT_FALSE(fillers.words.cleanupEnabled());
    EXPECT_EQ(fillers.words.fillerWords(), kDefault);
    EXPECT_EQ(fillers.words.removeConfiguredFillerWords("so um yeah"), "so um yeah");
    EXPECT_THAT(fillers.defaults.writes(), IsEmpty());
}

TEST(FillerWords, whenTheListChanges_goByTheNewOne) {
    Fillers fillers;
    EXPECT_EQ(fillers.removedWithList("a", "a b"), "b");
    EXPECT_EQ(fillers.removedWithList("b", "a b"), "a");
    EXPECT_EQ(fillers.removedWithList(",,", "a  b"), "a  b");
    EXPECT_EQ(fillers.removedWithList("a", "a b"), "b");
}

struct Effective {
    std::string list;
    PropertyValue stored;
    bool writes;
};
using EffectiveRow = Row<PropertyValue, Effective>;
class EffectiveList : public testing::TestWithParam<EffectiveRow> {};

TEST_P(EffectiveList, isShownAndMigrated) {
    Fillers fillers;
    fillers.defaults.set(kListKey, GetParam().input);
    EXPECT_EQ(fillers.words.fillerWords(), GetParam().expected.list);
    EXPECT_EQ(fillers.defaults.value(kListKey), GetParam().expected.stored);
    EXPECT_EQ(fillers.defaults.writes().size(), GetParam().expected.writes ? 2U : 1U);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, EffectiveList,
    testing::Values(EffectiveRow{"own list", "a, b", {"a, b", "a, b", false}},
                    EffectiveRow{
                        "own list is trimmed but not rewritten", " a, b\n", {"a, b", " a, b\n", false}},
                    EffectiveRow{"empty", "", {kDefault, kDefault, true}},
                    EffectiveRow{"blank", " \n\u00A0", {kDefault, kDefault, true}},
                    EffectiveRow{"stale", kStale, {kDefault, kDefault, true}},
                    EffectiveRow{"other stale", kOtherStale, {kDefault, kDefault, true}},
                    EffectiveRow{"stale but for case is the user's own",
                                 "You know, I mean, kind of, sort of, um, uh, erm, hmm",
                                 {"You know, I mean, kind of, sort of, um, uh, erm, hmm",
                                  "You know, I mean, kind of, sort of, um, uh, erm, hmm", false}},
                    EffectiveRow{"separators only are the user's own", " , ,  ", {", ,", " , ,  ", false}},
                    EffectiveRow{"another type counts as absent", 5, {kDefault, 5, false}}),
    rowName<testing::TestParamInfo<EffectiveRow>>);

TEST(FillerWords, whenSaved_areTrimmedAndStored) {
    Fillers fillers;
    EXPECT_EQ(fillers.words.saveFillerWords("  like, so \n"), "like, so");
    EXPECT_EQ(fillers.defaults.string(kListKey), "like, so");
}

TEST(FillerWords, whenClearedAndSaved_areTheDefaultAgain) {
    Fillers fillers;
    EXPECT_EQ(fillers.words.saveFillerWords(" \n"), kDefault);
    EXPECT_EQ(fillers.defaults.string(kListKey), kDefault);
}

TEST(FillerWords, whenAStaleListIsSaved_areTheDefault) {
    Fillers fillers;
    EXPECT_EQ(fillers.words.saveFillerWords(kStale), kDefault);
    EXPECT_EQ(fillers.defaults.string(kListKey), kDefault);
}

} // namespace

} // namespace tovik::test
