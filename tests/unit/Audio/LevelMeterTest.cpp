// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Audio/LevelMeter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <ostream>
#include <vector>

namespace tovik {
namespace {

constexpr float kTolerance = 1e-5F;

struct RmsRow {
    const char* name;
    float rms;
    float level;
};

std::ostream& operator<<(std::ostream& out, const RmsRow& row) {
    return out << row.name;
}

class LevelForRms : public testing::TestWithParam<RmsRow> {};

TEST_P(LevelForRms, followsTheCurve) {
    EXPECT_NEAR(LevelMeter::levelForRms(GetParam().rms), GetParam().level, kTolerance);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, LevelForRms,
    testing::Values(RmsRow{"Silence", 0.0F, 0.0F}, RmsRow{"TheFloorOf120Decibels", 0.000001F, 0.0F},
                    RmsRow{"BelowTheFloor", 1e-30F, 0.0F}, RmsRow{"Minus51Decibels", 0.0028183829F, 0.0F},
                    RmsRow{"Minus40Decibels", 0.01F, 0.3807308F}, RmsRow{"Minus20Decibels", 0.1F, 0.7360219F},
                    RmsRow{"HalfScale", 0.5F, 0.9259074F}, RmsRow{"FullScale", 1.0F, 1.0F},
                    RmsRow{"BeyondFullScale", 4.0F, 1.0F},
                    RmsRow{"NotANumber", std::numeric_limits<float>::quiet_NaN(), 0.0F}),
    [](const auto& row) { return row.param.name; });

TEST(LevelForRms, atMinus50Decibels_isZeroAsFarAsFloatsCanTell) {
    EXPECT_NEAR(LevelMeter::levelForRms(std::pow(10.0F, -2.5F)), 0.0F, 1e-3F);
}

TEST(LevelForRms, whenLouder_neverFalls) {
    float previous = 0;
    for (float rms = 0.0001F; rms < 1.0F; rms *= 1.01F) {
        const auto level = LevelMeter::levelForRms(rms);
        EXPECT_GE(level, previous);
        EXPECT_LE(level, 1.0F);
        previous = level;
    }
}

TEST(LevelMeter, whenTheBufferIsSilent_isZero) {
    EXPECT_EQ(LevelMeter::level(std::vector<float>(1024, 0.0F)), 0.0F);
}

TEST(LevelMeter, whenThereAreNoSamples_isZero) {
    EXPECT_EQ(LevelMeter::level({}), 0.0F);
}

TEST(LevelMeter, whenASquareWaveIsAtFullScale_isOne) {
    std::vector<float> wave(1024);
    for (std::size_t index = 0; index < wave.size(); ++index) {
        wave[index] = index % 2 == 0 ? 1.0F : -1.0F;
    }
    EXPECT_EQ(LevelMeter::level(wave), 1.0F);
}

TEST(LevelMeter, whenEverySampleHasOneValue_isThatOfItsMagnitude) {
    EXPECT_NEAR(LevelMeter::level(std::vector<float>(1024, -0.1F)), 0.7360219F, kTolerance);
}

TEST(LevelMeter, whenTheBufferIsOfAnyLength_countsEverySampleOnce) {
    for (std::size_t length = 1; length <= 70; ++length) {
        std::vector<float> samples(length, 0.0F);
        samples.back() = 1.0F;
        EXPECT_NEAR(LevelMeter::rms(samples), 1.0F / std::sqrt(static_cast<float>(length)), 1e-6F) << length;
    }
}

TEST(LevelMeter, whenTheSoundIsASine_hasTheRmsOfASine) {
    std::vector<float> samples(1600);
    for (std::size_t index = 0; index < samples.size(); ++index) {
        samples[index] = 0.5F * std::sin(static_cast<float>(index) * 2.0F * 3.14159265F / 160.0F);
    }
    EXPECT_NEAR(LevelMeter::rms(samples), 0.5F / std::sqrt(2.0F), 1e-5F);
}

} // namespace
} // namespace tovik
