// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Host/Resampler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace tovik {
namespace {

std::vector<float> tone(double frequency, double rate, double seconds, double amplitude) {
    std::vector<float> samples(static_cast<std::size_t>(rate * seconds));
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] =
            static_cast<float>(amplitude * std::sin(2 * M_PI * frequency * static_cast<double>(i) / rate));
    }
    return samples;
}

std::vector<std::int16_t> resample(const std::vector<float>& input, double from, double to,
                                   std::size_t atOnce = 1024) {
    auto resampler = Resampler::make(from, to);
    EXPECT_TRUE(resampler.ok());
    std::vector<std::int16_t> output;
    for (std::size_t i = 0; i < input.size(); i += atOnce) {
        resampler.value()->process(std::span(input).subspan(i, std::min(atOnce, input.size() - i)), output);
    }
    resampler.value()->finish(output);
    return output;
}

double rootMeanSquare(const std::vector<std::int16_t>& samples) {
    double sum = 0;
    for (const auto sample : samples) {
        sum += static_cast<double>(sample) * sample;
    }
    return std::sqrt(sum / static_cast<double>(samples.size()));
}

class ResamplerRates : public testing::TestWithParam<double> {};

TEST_P(ResamplerRates, keepsLengthAndLoudnessOfWhatFits) {
    const auto output = resample(tone(1000, GetParam(), 1, 0.5), GetParam(), 16000);
    EXPECT_NEAR(static_cast<double>(output.size()), 16000, 2);
    EXPECT_NEAR(rootMeanSquare(output), 0.5 * 32768 / std::sqrt(2), 60);
}

INSTANTIATE_TEST_SUITE_P(Rates, ResamplerRates,
                         testing::Values(8000, 16000, 22050, 44100, 48000, 96000, 192000));

TEST(Resampler, whenAToneDoesNotFitTheNewRate_leavesItOut) {
    // What is left is the click with which the tone begins.
    const auto output = resample(tone(12000, 48000, 1, 0.5), 48000, 16000);
    EXPECT_LT(rootMeanSquare({output.begin() + 1000, output.end() - 1000}), 2);
}

TEST(Resampler, whenTheSoundIsTooLoud_clipsIt) {
    const auto output = resample(tone(500, 48000, 0.2, 4), 48000, 16000);
    EXPECT_EQ(*std::max_element(output.begin(), output.end()), 32767);
    EXPECT_EQ(*std::min_element(output.begin(), output.end()), -32768);
}

TEST(Resampler, whateverThePieces_theLengthIsTheSame) {
    const auto input = tone(300, 44100, 0.5, 0.3);
    const auto size = resample(input, 44100, 16000).size();
    EXPECT_EQ(resample(input, 44100, 16000, 7).size(), size);
    EXPECT_EQ(resample(input, 44100, 16000, input.size()).size(), size);
}

TEST(Resampler, whenThereWasNoSound_givesNone) {
    EXPECT_TRUE(resample({}, 48000, 16000).empty());
}

TEST(Resampler, whenARateIsMissing_isAnError) {
    EXPECT_FALSE(Resampler::make(0, 16000).ok());
    EXPECT_FALSE(Resampler::make(-1, 16000).ok());
    EXPECT_FALSE(Resampler::make(std::nan(""), 16000).ok());
}

} // namespace
} // namespace tovik
