// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/TinyWaveform.h"

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

} // namespace
} // namespace tovik
