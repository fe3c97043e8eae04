// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/History/ListRows.h"

#include <gtest/gtest.h>

namespace tovik {
namespace {

ListRows rows(int count, int offset = 0) {
    return {.count = count, .rowHeight = 60, .viewHeight = 270, .offset = offset};
}

TEST(ListRows, findTheRowAtAHeight) {
    struct Case {
        const char* name;
        ListRows rows;
        int y;
        std::optional<int> row;
    };
    for (const auto& each : {Case{"the first line", rows(3), 0, 0}, Case{"the end of a row", rows(3), 59, 0},
                             Case{"the next row", rows(3), 60, 1}, Case{"below the last", rows(3), 180, {}},
                             Case{"scrolled", rows(10, 30), 30, 1}, Case{"above the view", rows(3), -1, {}},
                             Case{"below the view", rows(10), 270, {}}, Case{"no rows", rows(0), 10, {}}}) {
        EXPECT_EQ(each.rows.rowAt(each.y), each.row) << each.name;
    }
}

TEST(ListRows, knowWhatShows) {
    EXPECT_EQ(rows(0).firstVisible(), 0);
    EXPECT_EQ(rows(0).endVisible(), 0);
    EXPECT_EQ(rows(3).endVisible(), 3);
    EXPECT_EQ(rows(10).endVisible(), 5);
    EXPECT_EQ(rows(10, 30).firstVisible(), 0);
    EXPECT_EQ(rows(10, 30).endVisible(), 5);
    EXPECT_EQ(rows(10, 59).endVisible(), 6);
    EXPECT_EQ(rows(10, 60).firstVisible(), 1);
}

TEST(ListRows, thereAreViewsEnough_howeverTheListIsScrolled) {
    const int views = ListRows::viewsNeeded(270, 60);
    for (int offset = 0; offset <= rows(100).largestOffset(); ++offset) {
        const auto scrolled = rows(100, offset);
        ASSERT_LE(scrolled.endVisible() - scrolled.firstVisible(), views) << offset;
    }
}

TEST(ListRows, scrollOnlyAsFarAsARowNeeds) {
    EXPECT_EQ(rows(10).offsetShowing(0), 0);
    EXPECT_EQ(rows(10).offsetShowing(3), 0);
    EXPECT_EQ(rows(10).offsetShowing(4), 30);
    EXPECT_EQ(rows(10, 330).offsetShowing(5), 300);
    EXPECT_EQ(rows(10, 330).offsetShowing(9), 330);
    EXPECT_EQ(rows(10).largestOffset(), 330);
    EXPECT_EQ(rows(2).largestOffset(), 0);
}

TEST(ListRows, aPageIsWhatFitsWhole) {
    EXPECT_EQ(rows(10).rowsPerPage(), 4);
    EXPECT_EQ((ListRows{.count = 3, .rowHeight = 60, .viewHeight = 20}).rowsPerPage(), 1);
}

} // namespace
} // namespace tovik
