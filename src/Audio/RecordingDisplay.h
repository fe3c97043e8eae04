// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"

#include <cstdint>
#include <span>
#include <string>

namespace tovik {

/// How loud a buffer is, for display: 0 at -50 dB and below, 1 at full scale, with quiet speech lifted.
/// Without memory: nothing is smoothed or held. Any thread; neither blocks nor allocates.
class LevelMeter {
public:
    /// Samples in -1...1. No samples count as silence.
    [[nodiscard]] static float level(std::span<const float> samples);
    [[nodiscard]] static float levelForRms(float rms);
    [[nodiscard]] static float rms(std::span<const float> samples);
};

/// How one level of the microphone looks among the bars of a recording.
struct WaveformBar {
    /// In points, 3.5 to 26.
    double height = 0;
    // The parts of its colour, each 0...1: a quiet grey, or a warm tone that brightens with loudness.
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 0;

    /// Levels outside 0...1 count as the nearest within.
    [[nodiscard]] static WaveformBar forSample(double sample);

    bool operator==(const WaveformBar&) const = default;
};

/// The whole seconds since a moment, never below 0.
[[nodiscard]] std::int64_t elapsedSeconds(Date startedAt, Date now);

/// Minutes and seconds, from an hour on also hours: "0:07", "12:34", "1:00:05". Below 0 counts as 0.
[[nodiscard]] std::string formattedElapsedTime(std::int64_t seconds);

} // namespace tovik
