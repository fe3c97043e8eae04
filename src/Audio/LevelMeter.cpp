// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Audio/LevelMeter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>

namespace tovik {

namespace {

constexpr float kSmallestRms = 0.000001F;
constexpr float kRangeInDecibels = 50.0F;
constexpr float kCurve = 0.6F;

// Independent sums are what lets the compiler use vector instructions without reordering float additions.
constexpr std::size_t kLanes = 16;

float meanSquare(std::span<const float> samples) {
    if (samples.empty()) {
        return 0.0F;
    }
    std::array<float, kLanes> sums{};
    std::size_t index = 0;
    for (; index + kLanes <= samples.size(); index += kLanes) {
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            const float sample = samples[index + lane];
            sums[lane] += sample * sample;
        }
    }
    for (; index < samples.size(); ++index) {
        sums[index % kLanes] += samples[index] * samples[index];
    }
    return std::accumulate(sums.begin(), sums.end(), 0.0F) / static_cast<float>(samples.size());
}

} // namespace

float LevelMeter::rms(std::span<const float> samples) {
    return std::sqrt(meanSquare(samples));
}

float LevelMeter::levelForRms(float rms) {
    // Written so that what is not a number counts as silence too: it must not reach the display.
    const float audible = rms > kSmallestRms ? rms : kSmallestRms;
    const float decibels = 20.0F * std::log10(audible);
    const float linear = std::clamp((decibels + kRangeInDecibels) / kRangeInDecibels, 0.0F, 1.0F);
    return std::pow(linear, kCurve);
}

float LevelMeter::level(std::span<const float> samples) {
    return levelForRms(rms(samples));
}

} // namespace tovik
