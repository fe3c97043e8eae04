// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/History/RowSwipe.h"

#include "support/ManualTime.h"

#include <gtest/gtest.h>

#include <map>

namespace tovik {
namespace {

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
