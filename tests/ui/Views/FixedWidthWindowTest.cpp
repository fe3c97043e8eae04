// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/MainWindowLayout.h"
#include "support/ManualTime.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

namespace tovik {
namespace {

struct FixedWidthWindowTest : testing::Test {
    test::ManualTime time;
    FixedWidthWindow window{time, time};
};

TEST_F(FixedWidthWindowTest, whenUnlocked_takesTheFrameAsItIs) {
    window.setFrame({100, 60, 700, 600});
    EXPECT_EQ(window.frame(), (Rect{100, 60, 700, 600}));
}

TEST_F(FixedWidthWindowTest, whenLocked_keepsItsWidthAndTheFramesCentre) {
    window.setLockedFrameWidth(500);
    window.setFrame({100, 60, 700, 600});
    EXPECT_EQ(window.frame(), (Rect{200, 60, 500, 600}));
}

TEST_F(FixedWidthWindowTest, whenAnimated_arrivesInTime) {
    window.setLockedFrameWidth(500);
    window.setFrame({100, 60, 500, 600});
    window.setFrameAnimated({100, 60, 900, 700}, Seconds{0.2}, curve::linear);
    time.advance(Seconds{0.1});
    EXPECT_NEAR(window.frame().height, 650, 12);
    EXPECT_EQ(window.frame().width, 500);
    time.advance(Seconds{0.1});
    EXPECT_EQ(window.frame(), (Rect{300, 60, 500, 700}));
    EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(FixedWidthWindowTest, aPlainFrame_endsAnAnimation) {
    window.setFrame({100, 60, 500, 600});
    window.setFrameAnimated({100, 60, 500, 700}, Seconds{0.2}, curve::linear);
    window.setFrame({100, 60, 500, 620});
    time.advance(Seconds{1});
    EXPECT_EQ(window.frame().height, 620);
}

TEST_F(FixedWidthWindowTest, constrained_doesNotLeaveTheTopOfTheScreenAndKeepsItsWidth) {
    window.setLockedFrameWidth(500);
    EXPECT_EQ(window.constrainFrameRect({100, -50, 700, 600}, {0, 30, 1920, 1050}),
              (Rect{200, 30, 500, 600}));
    window.setLockedFrameWidth({});
    EXPECT_EQ(window.constrainFrameRect({100, -50, 700, 600}, {0, 30, 1920, 1050}),
              (Rect{100, 30, 700, 600}));
}

TEST_F(FixedWidthWindowTest, whenTheWindowManagerGivesAnotherWidth_asksForItsOwnAgain) {
    window.setLockedFrameWidth(500);
    window.setFrame({100, 60, 500, 600});
    window.show();
    window.setGeometry(100, 60, 800, 640);
    QCoreApplication::processEvents();
    time.runPending();
    EXPECT_EQ(window.frame(), (Rect{250, 60, 500, 640}));
}

TEST_F(FixedWidthWindowTest, whenTheWindowManagerInsists_givesInInsteadOfFlickering) {
    window.setLockedFrameWidth(500);
    window.setFrame({0, 0, 500, 600});
    window.show();
    window.setMinimumWidth(800);
    for (int round = 0; round < 20; ++round) {
        window.resize(800 + round % 2, 640);
        QCoreApplication::processEvents();
        time.runPending();
    }
    EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(FixedWidthWindowTest, whenItMayNotClose_staysOpen) {
    int asked = 0;
    window.setShouldClose([&] {
        ++asked;
        return false;
    });
    window.show();
    EXPECT_FALSE(window.close());
    EXPECT_EQ(asked, 1);
    EXPECT_TRUE(window.isVisible());
}

} // namespace
} // namespace tovik
