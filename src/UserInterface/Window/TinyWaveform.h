// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Clock.h"

namespace tovik {

inline constexpr Seconds kTinyWaveformInterval{1.0 / 24};
inline constexpr double kTinyWaveformPhaseStep = 0.16;
inline constexpr double kTinyWaveformBarWidth = 2;
inline constexpr double kTinyWaveformBarRadius = 1;
inline constexpr double kTinyWaveformStep = 7;
inline constexpr double kTinyWaveformStart = 1;

/// Height of one bar of the header's small waveform, 2...21.
[[nodiscard]] double tinyWaveformBarHeight(int barIndex, double phase);

} // namespace tovik
