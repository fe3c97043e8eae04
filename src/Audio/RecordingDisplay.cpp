// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Audio/RecordingDisplay.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>

namespace tovik {

namespace {

constexpr float kSmallestRms = 0.000001F;
constexpr float kRangeInDecibels = 50.0F;
constexpr float kLevelCurve = 0.6F;

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

constexpr double kBarCurve = 0.62;
constexpr double kSmallestHeight = 3.5;
constexpr double kLargestHeight = 26;
constexpr double kFlatBelow = 0.045;
constexpr double kGreyUpTo = 0.08;

double heightOf(double v) {
    return v < kFlatBelow ? kSmallestHeight : std::clamp(v * 22 + 4, kSmallestHeight, kLargestHeight);
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
    return std::pow(linear, kLevelCurve);
}

float LevelMeter::level(std::span<const float> samples) {
    return levelForRms(rms(samples));
}

WaveformBar WaveformBar::forSample(double sample) {
    // Written so that what is not a number counts as silence.
    const double v = std::pow(sample > 0 ? std::min(sample, 1.0) : 0.0, kBarCurve);
    if (v <= kGreyUpTo) {
        return {heightOf(v), 0.72, 0.72, 0.72, 0.76};
    }
    const double t = std::clamp((v - kGreyUpTo) / 0.92, 0.0, 1.0);
    return {heightOf(v), 0.66 + 0.32 * t, 0.58 - 0.02 * t, 0.5 - 0.25 * t, 0.84 + 0.16 * t};
}

std::int64_t elapsedSeconds(Date startedAt, Date now) {
    return std::max<std::int64_t>(std::chrono::duration_cast<std::chrono::seconds>(now - startedAt).count(),
                                  0);
}

std::string formattedElapsedTime(std::int64_t seconds) {
    const auto twoDigits = [](std::int64_t number) {
        return (number < 10 ? "0" : "") + std::to_string(number);
    };
    seconds = std::max<std::int64_t>(seconds, 0);
    const auto hours = seconds / 3600;
    const auto minutes = seconds % 3600 / 60;
    return (hours == 0 ? std::to_string(minutes) : std::to_string(hours) + ":" + twoDigits(minutes)) + ":" +
           twoDigits(seconds % 60);
}

} // namespace tovik
