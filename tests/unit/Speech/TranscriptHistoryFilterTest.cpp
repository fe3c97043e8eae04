// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/History/TranscriptHistoryFilter.h"

#include "Rows.h"

#include <gmock/gmock.h>

namespace tovik::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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
