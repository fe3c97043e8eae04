// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/Rgba.h"

#include <gtest/gtest.h>

namespace tovik {
namespace {

TEST(ContrastRatio, ofBlackAndWhite_isTwentyOneEitherWay) {
    EXPECT_NEAR(contrastRatio(Rgba::white(0), Rgba::white(1)), 21, 1e-9);
    EXPECT_NEAR(contrastRatio(Rgba::white(1), Rgba::white(0)), 21, 1e-9);
    EXPECT_NEAR(contrastRatio(Rgba::white(0.5), Rgba::white(0.5)), 1, 1e-9);
}

TEST(ContrastRatio, ofAKnownGrey_isTheKnownValue) {
    // #767676 on white is the well-known lightest readable grey.
    EXPECT_NEAR(contrastRatio(Rgba::white(118.0 / 255), Rgba::white(1)), 4.54, 0.01);
}

TEST(Blended, mixesByAlpha) {
    EXPECT_EQ(blended({1, 0, 0, 0.5}, Rgba::white(1)), (Rgba{1, 0.5, 0.5, 1}));
    EXPECT_EQ(blended({1, 0, 0, 0}, Rgba::white(1)), Rgba::white(1));
}

TEST(ReadableOn, keepsAColourThatReadsWell) {
    constexpr Rgba darkBlue{0.1, 0.1, 0.4};
    EXPECT_EQ(readableOn(Rgba::white(1), darkBlue), darkBlue);
}

TEST(ReadableOn, replacesAColourThatDoesNot) {
    EXPECT_EQ(readableOn(Rgba::white(1), Rgba::white(0.95)), Rgba::white(0));
    EXPECT_EQ(readableOn(Rgba::white(0.1), Rgba::white(0.2)), Rgba::white(1));
}

} // namespace
} // namespace tovik
