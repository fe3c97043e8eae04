// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/HeaderView.h"

#include "support/ManualTime.h"

#include <QCoreApplication>
#include <QHideEvent>

#include <gtest/gtest.h>

namespace tovik {
namespace {

TEST(TinyWaveformBarHeight, staysBetweenTwoAndTwentyOne) {
    for (double phase = 0; phase < 20; phase += kTinyWaveformPhaseStep) {
        for (int bar = 0; bar < 12; ++bar) {
            EXPECT_GE(tinyWaveformBarHeight(bar, phase), 2);
            EXPECT_LE(tinyWaveformBarHeight(bar, phase), 21);
        }
    }
}

TEST(TinyWaveformBarHeight, atPhaseZero_isLowestAtTheFirstBar) {
    EXPECT_DOUBLE_EQ(tinyWaveformBarHeight(0, 0), 3);
    EXPECT_GT(tinyWaveformBarHeight(1, 0), 3);
}

TEST(TinyWaveformBarHeight, changesWithThePhase) {
    EXPECT_NE(tinyWaveformBarHeight(3, 0), tinyWaveformBarHeight(3, kTinyWaveformPhaseStep));
}

struct TovikTinyWaveformViewTest : testing::Test {
    test::ManualTime time;
    QWidget window;
    TovikTinyWaveformView* view = new TovikTinyWaveformView(time, &window);
};

TEST_F(TovikTinyWaveformViewTest, outOfSight_nothingRuns) {
    EXPECT_FALSE(view->isAnimating());
    EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(TovikTinyWaveformViewTest, inSight_swaysTwentyFourTimesASecond) {
    window.show();
    EXPECT_TRUE(view->isAnimating());
    EXPECT_EQ(view->phase(), 0);
    time.advance(Seconds{1.001});
    EXPECT_NEAR(view->phase(), 24 * 0.16, 1e-9);
}

TEST_F(TovikTinyWaveformViewTest, whenShownTwice_hasOneTimer) {
    window.show();
    QShowEvent again;
    QCoreApplication::sendEvent(view, &again);
    EXPECT_EQ(time.pendingCount(), 1U);
}

TEST_F(TovikTinyWaveformViewTest, whenTheWindowIsHidden_stops) {
    window.show();
    window.hide();
    EXPECT_FALSE(view->isAnimating());
    EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(TovikTinyWaveformViewTest, whenItLeavesTheWindow_stops) {
    window.show();
    view->setParent(nullptr);
    EXPECT_FALSE(view->isAnimating());
    EXPECT_EQ(time.pendingCount(), 0U);
    delete view;
}

TEST_F(TovikTinyWaveformViewTest, whenShownAgain_goesOnFromItsPhase) {
    window.show();
    time.advance(Seconds{0.5});
    const double reached = view->phase();
    window.hide();
    time.advance(Seconds{1});
    EXPECT_EQ(view->phase(), reached);
    window.show();
    time.advance(Seconds{0.1});
    EXPECT_GT(view->phase(), reached);
}

} // namespace
} // namespace tovik
