// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

namespace tovik {

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

} // namespace tovik
