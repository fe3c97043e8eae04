// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "support/Recordings.h"

#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

namespace tovik::test {

/// The buzz of a fan or of the mains with its overtones, and a little noise, in the rate of the recordings.
inline std::vector<float> buzz(double frequency, double seconds) {
    std::mt19937 random(7);
    std::normal_distribution<double> noise(0, 0.001);
    std::vector<float> sound(static_cast<std::size_t>(seconds * kRecordingRate));
    for (std::size_t i = 0; i < sound.size(); ++i) {
        double hum = 0;
        for (int overtone = 1; overtone <= 15; ++overtone) {
            const double phase = 2 * M_PI * frequency * overtone * static_cast<double>(i) / kRecordingRate;
            hum += 0.01 * std::sin(phase) / overtone;
        }
        sound[i] = static_cast<float>(hum + noise(random));
    }
    return sound;
}

} // namespace tovik::test
