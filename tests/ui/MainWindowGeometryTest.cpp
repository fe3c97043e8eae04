// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/MainWindowGeometry.h"

#include <gtest/gtest.h>

namespace tovik {
namespace {

TEST(WindowWillResize, whateverTheUserDragsTo_keepsTheWidthAndClampsTheHeight) {
    struct Row {
        Size dragged;
        Size becomes;
    };
    for (const Row& row :
         {Row{{900, 300}, {500, 560}}, Row{{500, 1000}, {500, 760}}, Row{{120, 600}, {500, 600}},
          Row{{500, 560}, {500, 560}}, Row{{500, 760}, {500, 760}}}) {
        EXPECT_EQ(windowWillResize(row.dragged), row.becomes)
            << row.dragged.width << " x " << row.dragged.height;
    }
}

TEST(FrameWithLockedWidth, whenLocked_keepsTheCentreAndTheRest) {
    EXPECT_EQ(frameWithLockedWidth({100, 50, 900, 700}, 500), (Rect{300, 50, 500, 700}));
    EXPECT_EQ(frameWithLockedWidth({100, 50, 300, 700}, 500), (Rect{0, 50, 500, 700}));
}

TEST(FrameWithLockedWidth, whenNotLocked_changesNothing) {
    EXPECT_EQ(frameWithLockedWidth({100, 50, 900, 700}, {}), (Rect{100, 50, 900, 700}));
}

TEST(DefaultMainWindowFrame, isCentredInTheVisiblePart) {
    EXPECT_EQ(defaultMainWindowFrame({0, 30, 1920, 1050}), (Rect{710, 215, 500, 680}));
}

TEST(FittedMainWindowFrame, addsWhatLiesAboveAndBelowTheStackAndKeepsTheTopEdge) {
    const Rect current{200, 100, 500, 680};
    EXPECT_EQ(fittedMainWindowFrame(current, 520), (Rect{200, 100, 500, 616}));
    EXPECT_EQ(fittedMainWindowFrame(current, 1000), (Rect{200, 100, 500, 760}));
    EXPECT_EQ(fittedMainWindowFrame(current, 100), (Rect{200, 100, 500, 560}));
}

TEST(FittedMainWindowFrame, keepsTheHorizontalCentre) {
    EXPECT_EQ(fittedMainWindowFrame({200, 100, 700, 680}, 520), (Rect{300, 100, 500, 616}));
}

TEST(HeaderFadeAlpha, fadesOutWhileScrollingDown) {
    struct Row {
        double offset;
        double alpha;
    };
    for (const Row& row : {Row{-20, 1}, Row{0, 1}, Row{10, 1}, Row{44, 0.5}, Row{78, 0}, Row{500, 0}}) {
        EXPECT_DOUBLE_EQ(headerFadeAlpha(row.offset), row.alpha) << row.offset;
    }
}

} // namespace
} // namespace tovik
