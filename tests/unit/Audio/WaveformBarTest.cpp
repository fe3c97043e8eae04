// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Audio/WaveformBar.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tovik::test {

namespace {

constexpr WaveformBar kQuietest{3.5, 0.72, 0.72, 0.72, 0.76};

TEST(WaveformBar, forSilence_isTheSmallestAndGrey) {
    EXPECT_EQ(WaveformBar::forSample(0), kQuietest);
}

TEST(WaveformBar, forFullScale_isTheTallestAndBrightest) {
    const auto bar = WaveformBar::forSample(1);
    EXPECT_DOUBLE_EQ(bar.height, 26);
    EXPECT_DOUBLE_EQ(bar.red, 0.98);
    EXPECT_DOUBLE_EQ(bar.green, 0.56);
    EXPECT_DOUBLE_EQ(bar.blue, 0.25);
    EXPECT_DOUBLE_EQ(bar.alpha, 1);
}

TEST(WaveformBar, forAWhisper_isGreyAndALittleTaller) {
    const auto bar = WaveformBar::forSample(0.01);
    EXPECT_NEAR(bar.height, 5.3, 0.05);
    EXPECT_EQ(bar.red, 0.72);
    EXPECT_EQ(bar.alpha, 0.76);
}

TEST(WaveformBar, forHalfTheScale_isWarm) {
    const auto bar = WaveformBar::forSample(0.5);
    EXPECT_NEAR(bar.height, 18.3, 0.05);
    EXPECT_NEAR((bar.red - 0.66) / 0.32, 0.62, 0.005);
}

TEST(WaveformBar, whereTheCurveReachesItsThresholds_changes) {
    const auto sampleFor = [](double v) { return std::pow(v, 1 / 0.62); };
    EXPECT_DOUBLE_EQ(WaveformBar::forSample(sampleFor(0.0449)).height, 3.5);
    EXPECT_NEAR(WaveformBar::forSample(sampleFor(0.0451)).height, 4.99, 0.01);
    EXPECT_EQ(WaveformBar::forSample(sampleFor(0.0799)).red, 0.72);
    EXPECT_NEAR(WaveformBar::forSample(sampleFor(0.0801)).red, 0.66, 0.001);
}

TEST(WaveformBar, forSamplesOutsideTheScale_isThatOfTheNearestWithin) {
    EXPECT_EQ(WaveformBar::forSample(-0.2), kQuietest);
    EXPECT_EQ(WaveformBar::forSample(std::numeric_limits<double>::quiet_NaN()), kQuietest);
    EXPECT_EQ(WaveformBar::forSample(1.7), WaveformBar::forSample(1));
}

} // namespace

} // namespace tovik::test
