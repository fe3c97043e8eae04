// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/History/HistoryRows.h"

#include "support/ManualTime.h"

#include <gtest/gtest.h>

#include <map>

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

struct RowSwipeTest : testing::Test {
    test::ManualTime time;
    std::map<int, double> offsets;
    RowSwipe swipe{time, time, [this](int row, double offset) { offsets[row] = offset; }};

    void draw(int row, double distance) {
        swipe.begin(row);
        swipe.drawTo(distance);
        swipe.end();
        time.advance(Seconds{0.2});
    }
};

TEST_F(RowSwipeTest, whileDrawn_followsThePointer) {
    swipe.begin(2);
    swipe.drawTo(30);
    EXPECT_EQ(offsets[2], 30);
    swipe.drawTo(10);
    EXPECT_EQ(offsets[2], 10);
    swipe.drawTo(-50);
    EXPECT_EQ(offsets[2], 0);
}

TEST_F(RowSwipeTest, beyondTheAction_givesWayALittle) {
    swipe.begin(0);
    swipe.drawTo(RowSwipe::kActionWidth + 40);
    EXPECT_EQ(offsets[0], RowSwipe::kActionWidth + 10);
    swipe.drawTo(2000);
    EXPECT_EQ(offsets[0], RowSwipe::kActionWidth + 24);
}

TEST_F(RowSwipeTest, whenLetGo_showsTheWholeActionOrNone) {
    draw(1, RowSwipe::kActionWidth / 2);
    EXPECT_EQ(offsets[1], RowSwipe::kActionWidth);
    EXPECT_EQ(swipe.openRow(), 1);
    swipe.close();
    time.advance(Seconds{0.2});
    draw(1, RowSwipe::kActionWidth / 2 - 1);
    EXPECT_EQ(offsets[1], 0);
    EXPECT_EQ(swipe.openRow(), std::nullopt);
    EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(RowSwipeTest, whenAnotherRowIsTouched_theFirstGoesBack) {
    draw(1, 100);
    swipe.begin(2);
    EXPECT_EQ(offsets[1], 0);
    EXPECT_EQ(swipe.openRow(), std::nullopt);
}

TEST_F(RowSwipeTest, anOpenRow_isDrawnBackFromWhereItStands) {
    draw(1, 100);
    swipe.begin(1);
    swipe.drawTo(-20);
    EXPECT_EQ(offsets[1], RowSwipe::kActionWidth - 20);
}

TEST_F(RowSwipeTest, byATouchPad_comesToRestWhenTheMovementPauses) {
    for (int step = 0; step < 5; ++step) {
        swipe.scroll(3, 10);
        time.advance(Seconds{0.1});
    }
    EXPECT_EQ(offsets[3], 50);
    time.advance(Seconds{0.5});
    EXPECT_EQ(offsets[3], RowSwipe::kActionWidth);
    swipe.scroll(3, -60);
    time.advance(Seconds{0.5});
    EXPECT_EQ(offsets[3], 0);
    EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(RowSwipeTest, whenClosedAtOnce_nothingMovesAfterwards) {
    swipe.scroll(3, 60);
    swipe.closeAtOnce();
    EXPECT_EQ(offsets[3], 0);
    EXPECT_EQ(time.pendingCount(), 0U);
}

} // namespace
} // namespace tovik
