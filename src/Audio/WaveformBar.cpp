// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Audio/WaveformBar.h"

#include <algorithm>
#include <cmath>

namespace tovik {

namespace {

constexpr double kCurve = 0.62;
constexpr double kSmallestHeight = 3.5;
constexpr double kLargestHeight = 26;
constexpr double kFlatBelow = 0.045;
constexpr double kGreyUpTo = 0.08;

double heightOf(double v) {
    return v < kFlatBelow ? kSmallestHeight : std::clamp(v * 22 + 4, kSmallestHeight, kLargestHeight);
}

} // namespace

WaveformBar WaveformBar::forSample(double sample) {
    // Written so that what is not a number counts as silence.
    const double v = std::pow(sample > 0 ? std::min(sample, 1.0) : 0.0, kCurve);
    if (v <= kGreyUpTo) {
        return {heightOf(v), 0.72, 0.72, 0.72, 0.76};
    }
    const double t = std::clamp((v - kGreyUpTo) / 0.92, 0.0, 1.0);
    return {heightOf(v), 0.66 + 0.32 * t, 0.58 - 0.02 * t, 0.5 - 0.25 * t, 0.84 + 0.16 * t};
}

} // namespace tovik
