// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/History/TranscriptHistoryStore.h"

#include "Rows.h"
#include "support/ManualTime.h"
#include "support/MemoryUserDefaults.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

namespace tovik::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto kKey = "transcription.history";

struct History {
    MemoryUserDefaults defaults;
    ManualTime time;

    TranscriptHistoryStore loaded() { return {defaults, time}; }
    TranscriptHistoryStore loaded(PropertyValue stored) {
        defaults.set(kKey, std::move(stored));
        return loaded();
    }
};

PropertyValue element(const std::string& text, double createdAt) {
    return {{"text", text}, {"createdAt", createdAt}};
}

std::vector<std::string> textsOf(const TranscriptHistoryStore& store) {
    std::vector<std::string> texts;
    for (const auto& entry : store.entries()) {
        texts.push_back(entry.text);
    }
    return texts;
}

TEST(TranscriptHistoryStore, whenNothingIsStored_isEmptyAndWritesNothing) {
    History history;
    EXPECT_THAT(history.loaded().entries(), IsEmpty());
    EXPECT_THAT(history.defaults.writes(), IsEmpty());
}

TEST(TranscriptHistoryStore, whenATextIsAdded_putsItFirstWithTheTime) {
    History history;
    auto store = history.loaded();
    store.add("first");
    history.time.pause(Seconds(1.5));
    store.add("second");
    const Date start{std::chrono::seconds(ManualTime::startSecondsSince1970)};
    EXPECT_THAT(store.entries(),
                ElementsAre(TranscriptHistoryEntry{"second", start + std::chrono::milliseconds(1500)},
                            TranscriptHistoryEntry{"first", start}));
}

TEST(TranscriptHistoryStore, whenATextIsAdded_storesTwoKeysForEach) {
    History history;
    auto store = history.loaded();
    store.add("first");
    history.time.pause(Seconds(1.5));
    store.add("second");
    const double start = ManualTime::startSecondsSince1970;
    EXPECT_EQ(history.defaults.value(kKey),
              PropertyValue::array({element("second", start + 1.5), element("first", start)}));
    EXPECT_TRUE(history.defaults.value(kKey)->at(1).at("createdAt").is_number_float());
}

class AddedText : public testing::TestWithParam<TextRow> {};
TEST_P(AddedText, isTrimmed) {
    History history;
    auto store = history.loaded();
    store.add(GetParam().input);
    EXPECT_THAT(textsOf(store), ElementsAre(GetParam().expected));
}
INSTANTIATE_TEST_SUITE_P(Rows, AddedText,
                         testing::Values(TextRow{"spaces and line feeds", "  hello \n", "hello"},
                                         TextRow{"no-break space and next line", "\u00A0hello\u0085",
                                                 "hello"},
                                         TextRow{"inner ones stay", "a \n b", "a \n b"},
                                         TextRow{"unit separator stays", "\u001F", "\u001F"},
                                         TextRow{"broken text is repaired", "a\xFF", "a\uFFFD"}),
                         rowName<testing::TestParamInfo<TextRow>>);

TEST(TranscriptHistoryStore, whenOnlyWhiteSpaceIsAdded_changesAndWritesNothing) {
    History history;
    auto store = history.loaded();
    store.add("   ");
    store.add("");
    store.add("\n\u00A0\u2029");
    EXPECT_THAT(store.entries(), IsEmpty());
    EXPECT_THAT(history.defaults.writes(), IsEmpty());
}

TEST(TranscriptHistoryStore, whenATextIsAddedTwice_keepsBoth) {
    History history;
    auto store = history.loaded();
    store.add("same");
    store.add("same");
    EXPECT_THAT(textsOf(store), ElementsAre("same", "same"));
}

TEST(TranscriptHistoryStore, whenThe101stIsAdded_dropsTheOldest) {
    History history;
    auto store = history.loaded();
    for (int i = 1; i <= 100; ++i) {
        store.add(std::to_string(i));
    }
    EXPECT_EQ(store.entries().size(), 100U);
    EXPECT_EQ(store.entries().back().text, "1");
    store.add("101");
    EXPECT_EQ(store.entries().size(), 100U);
    EXPECT_EQ(store.entries().front().text, "101");
    EXPECT_EQ(store.entries().back().text, "2");
    EXPECT_EQ(history.defaults.value(kKey)->size(), 100U);
}

TEST(TranscriptHistoryStore, whenLoadedAgain_hasTheSameEntries) {
    History history;
    auto store = history.loaded();
    history.time.pause(Seconds(0.123456789));
    store.add("one");
    history.time.pause(Seconds(1e-6));
    store.add("two");
    auto again = history.loaded();
    EXPECT_EQ(textsOf(again), textsOf(store));
    for (std::size_t i = 0; i < 2; ++i) {
        const Seconds difference = again.entries()[i].createdAt - store.entries()[i].createdAt;
        EXPECT_NEAR(difference.count(), 0, 1e-6);
    }
    const auto stored = history.defaults.value(kKey);
    again.save();
    EXPECT_EQ(history.defaults.value(kKey), stored);
}

using LoadRow = Row<PropertyValue, std::vector<std::string>>;
class StoredHistory : public testing::TestWithParam<LoadRow> {};
TEST_P(StoredHistory, loadsWhatIsUsableAndWritesNothing) {
    History history;
    EXPECT_EQ(textsOf(history.loaded(GetParam().input)), GetParam().expected);
    EXPECT_EQ(history.defaults.value(kKey), GetParam().input);
    EXPECT_THAT(history.defaults.writes(), ElementsAre(kKey));
}
INSTANTIATE_TEST_SUITE_P(
    Rows, StoredHistory,
    testing::Values(
        LoadRow{"a dictionary", {{"text", "a"}, {"createdAt", 1.0}}, {}}, LoadRow{"a string", "x", {}},
        LoadRow{"null", nullptr, {}}, LoadRow{"empty list", PropertyValue::array(), {}},
        LoadRow{"one element is no dictionary", PropertyValue::array({element("a", 1), "x"}), {}},
        LoadRow{"a time that is a string is skipped",
                PropertyValue::array({element("a", 1), {{"text", "b"}, {"createdAt", "2"}}, element("c", 3)}),
                {"a", "c"}},
        LoadRow{"a time that is a boolean is skipped",
                PropertyValue::array({{{"text", "b"}, {"createdAt", true}}}),
                {}},
        LoadRow{"a text that is no string is skipped",
                PropertyValue::array({{{"text", 5}, {"createdAt", 2}}, element("c", 3)}),
                {"c"}},
        LoadRow{"missing keys are skipped",
                PropertyValue::array({{{"text", "a"}}, {{"createdAt", 2}}, PropertyValue::object()}),
                {}},
        LoadRow{"a whole number is a time", PropertyValue::array({{{"text", "a"}, {"createdAt", 5}}}), {"a"}},
        LoadRow{"order and white space stay",
                PropertyValue::array({element(" b ", 1), element("a", 9), element("", 5)}),
                {" b ", "a", ""}},
        LoadRow{"other keys are ignored",
                PropertyValue::array({{{"text", "a"}, {"createdAt", 5}, {"x", 1}}}),
                {"a"}},
        LoadRow{"a time beyond all dates",
                PropertyValue::array({element("a", 1e300), element("b", -1e300)}),
                {"a", "b"}}),
    rowName<testing::TestParamInfo<LoadRow>>);

TEST(TranscriptHistoryStore, whenUnusableElementsAreOverwritten_keepsThemAsideOnce) {
    History history;
    const auto unusable = PropertyValue::array({element("a", 1), {{"text", 5}}});
    auto store = history.loaded(unusable);
    store.add("b");
    store.add("c");
    EXPECT_THAT(textsOf(store), ElementsAre("c", "b", "a"));
    EXPECT_EQ(history.defaults.value("platform.keptAside.transcription.history"),
              PropertyValue::array({unusable}));
}

TEST(TranscriptHistoryStore, whenEverythingCouldBeLoaded_keepsNothingAside) {
    History history;
    auto store = history.loaded(PropertyValue::array({element("a", 1)}));
    store.add("b");
    EXPECT_THAT(history.defaults.writes(), ElementsAre(kKey, kKey));
}

TEST(TranscriptHistoryStore, whenAnEntryIsRemoved_savesOnlyWhenTold) {
    History history;
    auto store = history.loaded(PropertyValue::array({element("a", 1), element("b", 2), element("c", 3)}));
    EXPECT_TRUE(store.remove(1));
    EXPECT_THAT(textsOf(store), ElementsAre("a", "c"));
    EXPECT_EQ(history.defaults.value(kKey)->size(), 3U);
    store.save();
    EXPECT_EQ(history.defaults.value(kKey), PropertyValue::array({element("a", 1), element("c", 3)}));
}

TEST(TranscriptHistoryStore, whenTheIndexIsBeyondTheList_changesNothing) {
    History history;
    auto store = history.loaded(PropertyValue::array({element("a", 1), element("b", 2), element("c", 3)}));
    EXPECT_FALSE(store.remove(5));
    EXPECT_FALSE(store.remove(3));
    EXPECT_THAT(textsOf(store), ElementsAre("a", "b", "c"));
}

TEST(TranscriptHistoryStore, whenFarTooManyAreStored_loadsAllAndTrimsAtTheNextAdd) {
    constexpr std::size_t kMany = 100'000;
    auto many = PropertyValue::array();
    for (std::size_t i = 0; i < kMany; ++i) {
        many.push_back(element("text " + std::to_string(i), static_cast<double>(i)));
    }
    History history;
    auto store = history.loaded(std::move(many));
    EXPECT_EQ(store.entries().size(), kMany);
    store.add("new");
    EXPECT_EQ(store.entries().size(), 100U);
    EXPECT_EQ(store.entries().front().text, "new");
    EXPECT_EQ(store.entries().back().text, "text 98");
    EXPECT_EQ(history.defaults.value(kKey)->size(), 100U);
}

TEST(TranscriptHistoryStore, whenAnotherProcessChangesWhatIsStored_loadsItOnce) {
    History history;
    auto store = history.loaded();
    store.add("ours");
    EXPECT_FALSE(store.loadIfChanged());
    history.defaults.set(kKey, PropertyValue::array({element("theirs", 2.5), element("ours", 1.5)}));
    EXPECT_TRUE(store.loadIfChanged());
    EXPECT_THAT(textsOf(store), ElementsAre("theirs", "ours"));
    EXPECT_FALSE(store.loadIfChanged());
    history.defaults.remove(kKey);
    EXPECT_TRUE(store.loadIfChanged());
    EXPECT_THAT(store.entries(), IsEmpty());
}

TEST(TranscriptHistoryStore, anEntryLoadedAgain_isTheOneThatWasAdded) {
    History history;
    history.time.pause(Seconds(0.123456789));
    auto store = history.loaded();
    store.add("text");
    EXPECT_EQ(history.loaded().entries(), store.entries());
}

TEST(TranscriptHistoryStore, whenAWriteFails_keepsWhatItHolds) {
    class Broken : public MemoryUserDefaults {
    public:
        void set(std::string_view /*key*/, PropertyValue /*value*/) override {}
    };
    Broken defaults;
    ManualTime time;
    TranscriptHistoryStore store(defaults, time);
    store.add("text");
    EXPECT_FALSE(store.loadIfChanged());
    EXPECT_THAT(textsOf(store), ElementsAre("text"));
}

TEST(TranscriptHistoryStore, whenAnotherProcessHasAddedMeanwhile_addKeepsItsEntryToo) {
    History history;
    auto store = history.loaded();
    history.defaults.setByOthers(kKey, PropertyValue::array({element("theirs", 1)}));
    store.add("ours");
    EXPECT_THAT(textsOf(store), ElementsAre("ours", "theirs"));
    EXPECT_THAT(textsOf(history.loaded()), ElementsAre("ours", "theirs"));
}

// What another process writes takes the place of a list that could not be written.

TEST(TranscriptHistoryStore, whenOthersWriteAfterAFailedWrite_theEntriesNotSavedStandAmongTheirs) {
    History history;
    auto store = history.loaded(PropertyValue::array({element("before", 1)}));
    history.defaults.setSaving(false);
    store.add("lost one");
    history.time.pause(Seconds(2));
    store.add("lost two");
    const auto between = static_cast<double>(ManualTime::startSecondsSince1970) + 1;
    history.defaults.setByOthers(kKey,
                                 PropertyValue::array({element("theirs", between), element("before", 1)}));
    history.defaults.setSaving(true);

    EXPECT_TRUE(store.loadIfChanged());
    EXPECT_THAT(textsOf(store), ElementsAre("lost two", "theirs", "lost one", "before"));
    EXPECT_THAT(textsOf(history.loaded()), ElementsAre("lost two", "theirs", "lost one", "before"));
}

TEST(TranscriptHistoryStore, asLongAsWritesFail_entriesSurviveEveryChangeByOthers) {
    History history;
    auto store = history.loaded();
    history.defaults.setSaving(false);
    store.add("lost");
    history.defaults.setByOthers(kKey, PropertyValue::array({element("theirs", 1)}));
    EXPECT_TRUE(store.loadIfChanged());
    history.defaults.setByOthers(kKey, PropertyValue::array({element("theirs again", 2)}));
    EXPECT_TRUE(store.loadIfChanged());
    EXPECT_THAT(textsOf(store), ElementsAre("lost", "theirs again"));
}

TEST(TranscriptHistoryStore, anEntryThatWasSavedAfterAll_isNotPutBackWhenOthersDeleteIt) {
    History history;
    auto store = history.loaded();
    history.defaults.setSaving(false);
    store.add("saved late");
    history.defaults.setSaving(true);
    EXPECT_FALSE(store.loadIfChanged());
    history.defaults.setByOthers(kKey, PropertyValue::array());
    EXPECT_TRUE(store.loadIfChanged());
    EXPECT_THAT(store.entries(), IsEmpty());
}

TEST(TranscriptHistoryStore, anEntryThatTheUserDeletes_isNotPutBackThoughItWasNeverSaved) {
    History history;
    auto store = history.loaded();
    history.defaults.setSaving(false);
    store.add("unwanted");
    EXPECT_TRUE(store.remove(0));
    store.save();
    history.defaults.setByOthers(kKey, PropertyValue::array({element("theirs", 1)}));
    EXPECT_TRUE(store.loadIfChanged());
    EXPECT_THAT(textsOf(store), ElementsAre("theirs"));
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
