// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "WaveformOverlay.h"
#include "support/FakeScreens.h"

#include <gtest/gtest.h>

namespace tovik {
namespace {

constexpr Size kPill{336, 38};
constexpr Screen kLeft{{0, 0, 1920, 1080}, {0, 30, 1920, 1000}};
constexpr Screen kRight{{1920, 200, 1280, 800}, {1970, 200, 1230, 760}};

TEST(OverlayOrigin, onOneScreen_isCentredInItsFrameAndAboveThePanelAtTheBottom) {
    test::FakeScreens screens;
    screens.setScreens({kLeft});
    screens.setPointerLocation({10, 10});
    EXPECT_EQ(overlayOrigin(screens, kPill), (Point{960 - 168, 1030 - 30 - 38}));
}

TEST(OverlayOrigin, withThePointerOnTheSecondScreen_isOnThatScreen) {
    test::FakeScreens screens;
    screens.setScreens({kLeft, kRight});
    screens.setPointerLocation({1920, 500});
    // The middle is that of the whole screen, though a panel takes some of its left side.
    EXPECT_EQ(overlayOrigin(screens, kPill), (Point{2560 - 168, 960 - 30 - 38}));
}

TEST(OverlayOrigin, withThePointerBetweenScreens_isOnTheMainScreen) {
    test::FakeScreens screens;
    screens.setScreens({kLeft, kRight});
    screens.setPointerLocation({2000, 100});
    EXPECT_EQ(overlayOrigin(screens, kPill), (Point{960 - 168, 1030 - 30 - 38}));
}

TEST(OverlayOrigin, withoutAnyScreen_isHalfAWidthLeftOfTheOrigin) {
    test::FakeScreens screens;
    screens.setScreens({});
    EXPECT_EQ(overlayOrigin(screens, kPill), (Point{-168, 30}));
}

TEST(IsWorthMoving, upToOnePointOnBothAxes_isFalse) {
    EXPECT_FALSE(isWorthMoving({100, 100}, {101, 99}));
    EXPECT_TRUE(isWorthMoving({100, 100}, {101.5, 100}));
    EXPECT_TRUE(isWorthMoving({100, 100}, {100, 98.5}));
}

} // namespace
} // namespace tovik
