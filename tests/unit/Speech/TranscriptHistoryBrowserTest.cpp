// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/History/TranscriptHistoryBrowser.h"

#include "support/FakeUserInterface.h"
#include "support/FakeWorkspace.h"
#include "support/ManualTime.h"
#include "support/MemoryUserDefaults.h"

#include <gmock/gmock.h>

namespace tovik::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TranscriptHistoryBrowserTest : public testing::Test {
protected:
    TranscriptHistoryBrowserTest() {
        // As the real window does.
        window.onCall([this](const std::string& call) {
            if (call == "reloadHistoryTable") {
                browser.reload();
            }
        });
    }

    /// The last one is the newest.
    void add(const std::vector<std::string>& texts) {
        for (const auto& text : texts) {
            store.add(text);
            time.pause(Seconds(1));
        }
        browser.reload();
        window.forgetCalls();
    }
    [[nodiscard]] std::vector<std::string> rows() const {
        std::vector<std::string> texts;
        for (const auto& row : browser.filteredHistoryEntries()) {
            texts.push_back(row.entry.text);
        }
        return texts;
    }
    [[nodiscard]] std::vector<std::string> stored() {
        const TranscriptHistoryStore another(defaults, time);
        std::vector<std::string> texts;
        for (const auto& entry : another.entries()) {
            texts.push_back(entry.text);
        }
        return texts;
    }

    MemoryUserDefaults defaults;
    ManualTime time;
    FakePasteboard pasteboard;
    FakeMainWindow window;
    TranscriptHistoryStore store{defaults, time};
    TranscriptHistoryBrowser browser{store, pasteboard, window};
};

TEST_F(TranscriptHistoryBrowserTest, withoutAQuery_showsAllNewestFirst) {
    add({"first", "second", "third"});
    EXPECT_THAT(rows(), ElementsAre("third", "second", "first"));
    EXPECT_EQ(browser.countText(), "3 of 3");
}

TEST_F(TranscriptHistoryBrowserTest, whenAQueryIsTyped_keepsWhatHoldsItAndReloadsTheTable) {
    add({"well hello there", "goodbye", "Hello again"});
    browser.historySearchChanged("  HeLLo ");
    EXPECT_EQ(browser.historySearchQuery(), "  HeLLo ");
    EXPECT_THAT(window.calls(), ElementsAre("reloadHistoryTable"));
    EXPECT_THAT(rows(), ElementsAre("Hello again", "well hello there"));
    EXPECT_EQ(browser.countText(), "2 of 3");
}

TEST_F(TranscriptHistoryBrowserTest, whenNothingMatches_countsNoneOfAll) {
    add(std::vector<std::string>(12, "text"));
    browser.historySearchChanged("nowhere");
    EXPECT_THAT(rows(), IsEmpty());
    EXPECT_EQ(browser.countText(), "0 of 12");
}

TEST_F(TranscriptHistoryBrowserTest, withoutTranscripts_theCountIsEmpty) {
    EXPECT_EQ(browser.countText(), "");
    browser.historySearchChanged("anything");
    EXPECT_EQ(browser.countText(), "");
}

TEST_F(TranscriptHistoryBrowserTest, whenARowIsCopied_itsTextIsOnTheClipboardUnchanged) {
    add({"older", "one\ntwo  three"});
    EXPECT_TRUE(browser.copyRow(0));
    EXPECT_THAT(pasteboard.texts(), ElementsAre("one\ntwo  three"));
    EXPECT_THAT(window.calls(), ElementsAre("toast: Copied"));
}

TEST_F(TranscriptHistoryBrowserTest, whileFiltered_aRowIsOneOfThoseShown) {
    add({"tea", "coffee", "more tea"});
    browser.historySearchChanged("tea");
    EXPECT_TRUE(browser.copyRow(1));
    EXPECT_EQ(pasteboard.contents(), "tea");
    EXPECT_FALSE(browser.copyRow(2));
    EXPECT_THAT(pasteboard.texts(), ElementsAre("tea"));
}

TEST_F(TranscriptHistoryBrowserTest, anEntryIsCopiedByItsPlaceInTheStore_alsoWhenItIsFilteredOut) {
    add({"tea", "coffee"});
    browser.historySearchChanged("tea");
    browser.copyHistoryEntry(0);
    EXPECT_EQ(pasteboard.contents(), "coffee");
    browser.copyHistoryEntry(2);
    EXPECT_THAT(pasteboard.texts(), ElementsAre("coffee"));
}

TEST_F(TranscriptHistoryBrowserTest, whileFiltered_deletesTheEntryAtTheIndexNotTheRow) {
    add({"tea", "coffee", "more tea", "water"});
    browser.historySearchChanged("tea");
    EXPECT_EQ(browser.rowOf(3), 1u);
    EXPECT_EQ(browser.rowOf(2), std::nullopt);
    browser.deleteHistoryEntry(3);
    EXPECT_THAT(stored(), ElementsAre("water", "more tea", "coffee"));
    EXPECT_THAT(rows(), ElementsAre("more tea"));
    EXPECT_EQ(browser.countText(), "1 of 3");
}

TEST_F(TranscriptHistoryBrowserTest, whileFiltered_deletingARowTakesItsEntry) {
    add({"tea", "coffee", "more tea"});
    browser.historySearchChanged("tea");
    browser.deleteRow(1);
    EXPECT_THAT(stored(), ElementsAre("more tea", "coffee"));
    browser.deleteRow(1);
    EXPECT_THAT(stored(), ElementsAre("more tea", "coffee"));
}

TEST_F(TranscriptHistoryBrowserTest, whenAnIndexIsStale_nothingIsDeletedOrWrittenButTheTableReloads) {
    add({"a", "b", "c"});
    const auto writes = defaults.writes().size();
    browser.deleteHistoryEntry(5);
    EXPECT_THAT(stored(), ElementsAre("c", "b", "a"));
    EXPECT_EQ(defaults.writes().size(), writes);
    EXPECT_THAT(window.calls(), ElementsAre("reloadHistoryTable"));
}

TEST_F(TranscriptHistoryBrowserTest, whenATranscriptArrives_theOneThatWasShownIsFoundAtItsNewPlace) {
    add({"a", "b"});
    const auto shown = browser.filteredHistoryEntries()[0];
    EXPECT_EQ(browser.currentIndexOf(shown), 0u);
    add({"c"});
    EXPECT_EQ(browser.currentIndexOf(shown), 1u);
    browser.deleteHistoryEntry(1);
    EXPECT_EQ(browser.currentIndexOf(shown), std::nullopt);
}

TEST_F(TranscriptHistoryBrowserTest, ofEqualTexts_theOneThatWasShownIsMeant) {
    add({"same", "same"});
    EXPECT_EQ(browser.currentIndexOf(browser.filteredHistoryEntries()[1]), 1u);
}

// What the list is filtered by.

std::vector<TranscriptHistoryEntry> entriesOf(const std::vector<std::string>& texts) {
    std::vector<TranscriptHistoryEntry> entries;
    for (const auto& text : texts) {
        entries.push_back({text, Date{std::chrono::seconds(1000 - entries.size())}});
    }
    return entries;
}

std::vector<std::size_t> indicesOf(const std::vector<FilteredHistoryEntry>& rows) {
    std::vector<std::size_t> indices;
    for (const auto& row : rows) {
        indices.push_back(row.index);
    }
    return indices;
}

struct MatchRow {
    const char* name;
    std::string text;
    std::string query;
    bool matches;
};

class MatchTest : public testing::TestWithParam<MatchRow> {};

TEST_P(MatchTest, isAsTheUserExpects) {
    TranscriptHistoryFilter filter;
    const auto& row = GetParam();
    EXPECT_EQ(filter.apply(entriesOf({row.text}), row.query).size(), row.matches ? 1U : 0U);
}

INSTANTIATE_TEST_SUITE_P(
    TranscriptHistoryFilter, MatchTest,
    testing::Values(MatchRow{"noQuery", "anything", "", true},
                    MatchRow{"whiteSpaceAlone", "anything", " \t\n ", true},
                    MatchRow{"trimmedAndInAnyCase", "well hello there", "  HeLLo ", true},
                    MatchRow{"capitalsInTheText", "Well HELLO there", "hello", true},
                    MatchRow{"aPieceOfAWord", "forward", "orwa", true},
                    MatchRow{"spacesWithin", "go forward ten", "go forward", true},
                    MatchRow{"spacesWithinAreExact", "go forward ten", "go  forward", false},
                    MatchRow{"notThere", "go forward", "backward", false},
                    MatchRow{"patternsAreText", "ten meters", "t.n", false},
                    MatchRow{"aDotIsADot", "it costs 3.50", "3.5", true},
                    MatchRow{"accentsInAnyCase", "Où est l'École", "éCOLE", true},
                    MatchRow{"accentsCount", "ecole", "école", false},
                    MatchRow{"otherScripts", "Привет, МИР", "мир", true},
                    MatchRow{"emoji", "see you 👋🏽 soon", "👋🏽", true},
                    MatchRow{"overLines", "one\ntwo", "one\ntwo", true},
                    MatchRow{"longerThanTheText", "go", "go on", false}),
    [](const auto& row) { return row.param.name; });

TEST(TranscriptHistoryFilter, whatItLetsThrough_keepsItsOrderAndItsIndex) {
    TranscriptHistoryFilter filter;
    const auto entries = entriesOf({"green tea", "coffee", "black tea", "water", "tea"});
    EXPECT_THAT(indicesOf(filter.apply(entries, "tea")), ElementsAre(0u, 2u, 4u));
    EXPECT_THAT(indicesOf(filter.apply(entries, "")), ElementsAre(0u, 1u, 2u, 3u, 4u));
    EXPECT_EQ(filter.apply(entries, "black").front(), (FilteredHistoryEntry{2, entries[2]}));
}

TEST(TranscriptHistoryFilter, ofNoEntries_nothingIsLeft) {
    TranscriptHistoryFilter filter;
    EXPECT_THAT(filter.apply({}, ""), IsEmpty());
    EXPECT_THAT(filter.apply({}, "tea"), IsEmpty());
}

TEST(TranscriptHistoryFilter, whenTheEntriesChange_goesByTheNewOnes) {
    TranscriptHistoryFilter filter;
    for (int round = 0; round < 500; ++round) {
        const auto number = std::to_string(round);
        const auto rows = filter.apply(entriesOf({"note " + number, "other"}), "NOTE " + number);
        ASSERT_THAT(indicesOf(rows), ElementsAre(0u)) << round;
    }
}

} // namespace

} // namespace tovik::test
