// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/TimingCurve.h"

#include <gtest/gtest.h>

namespace tovik {
namespace {

constexpr TimingCurve kSlowEnds{0.2, 0, 0.2, 1};

TEST(TimingCurve, atTheEnds_isExact) {
    for (const TimingCurve& curve :
         {TimingCurve::linear, TimingCurve::easeOut, TimingCurve::easeInEaseOut, kSlowEnds}) {
        EXPECT_EQ(curve.valueAt(0), 0);
        EXPECT_EQ(curve.valueAt(1), 1);
        EXPECT_EQ(curve.valueAt(-3), 0);
        EXPECT_EQ(curve.valueAt(3), 1);
    }
}

TEST(TimingCurve, linear_isTheTimeItself) {
    for (const double time : {0.1, 0.25, 0.5, 0.9}) {
        EXPECT_NEAR(TimingCurve::linear.valueAt(time), time, 1e-9);
    }
}

TEST(TimingCurve, easeOut_isFastAtFirst) {
    EXPECT_GT(TimingCurve::easeOut.valueAt(0.25), 0.35);
    EXPECT_GT(TimingCurve::easeOut.valueAt(0.5), 0.65);
}

TEST(TimingCurve, easeInEaseOut_isSymmetric) {
    EXPECT_NEAR(TimingCurve::easeInEaseOut.valueAt(0.5), 0.5, 1e-9);
    EXPECT_NEAR(TimingCurve::easeInEaseOut.valueAt(0.2), 1 - TimingCurve::easeInEaseOut.valueAt(0.8), 1e-9);
}

TEST(TimingCurve, curveOfTheCards_isMostlyDoneAtHalfTime) {
    // Where the parameter is 1/2: time 3/8 * 0.2 * 2 + 1/8 = 0.275, value 1/2.
    EXPECT_NEAR(kSlowEnds.valueAt(0.275), 0.5, 1e-6);
    EXPECT_GT(kSlowEnds.valueAt(0.5), 0.8);
}

TEST(TimingCurve, neverGoesBack) {
    for (const TimingCurve& curve :
         {TimingCurve::linear, TimingCurve::easeOut, TimingCurve::easeInEaseOut, kSlowEnds}) {
        double last = 0;
        for (double time = 0; time <= 1; time += 0.01) {
            EXPECT_GE(curve.valueAt(time), last);
            last = curve.valueAt(time);
        }
    }
}

} // namespace
} // namespace tovik
