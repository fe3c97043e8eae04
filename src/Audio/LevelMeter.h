// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <span>

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

} // namespace tovik
