// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Audio/RecordingDisplay.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstddef>
#include <limits>
#include <ostream>
#include <string>
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

TEST(FormattedElapsedTime, isAsOnAClock) {
    struct Row {
        const char* name;
        std::int64_t seconds;
        std::string shown;
    };
    for (const auto& row :
         {Row{"start", 0, "0:00"}, Row{"seven seconds", 7, "0:07"}, Row{"59 seconds", 59, "0:59"},
          Row{"a minute", 60, "1:00"}, Row{"minutes and seconds", 754, "12:34"},
          Row{"last second before an hour", 3599, "59:59"}, Row{"an hour", 3600, "1:00:00"},
          Row{"an hour and five seconds", 3605, "1:00:05"}, Row{"many hours", 360'000 + 3599, "100:59:59"},
          Row{"before the start", -5, "0:00"}}) {
        EXPECT_EQ(formattedElapsedTime(row.seconds), row.shown) << row.name;
    }
}

TEST(ElapsedSeconds, areWholeAndNeverNegative) {
    const Date start{};
    EXPECT_EQ(elapsedSeconds(start, start + std::chrono::milliseconds(1999)), 1);
    EXPECT_EQ(elapsedSeconds(start, start - std::chrono::milliseconds(1999)), 0);
}

} // namespace
} // namespace tovik
