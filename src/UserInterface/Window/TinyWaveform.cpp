// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/TinyWaveform.h"

#include <algorithm>
#include <cmath>

namespace tovik {

double tinyWaveformBarHeight(int barIndex, double phase) {
    // Two waves that drift through each other; neither factor is a multiple of the other.
    const double slow = std::abs(std::sin(barIndex * 0.55 + phase));
    const double fast = std::abs(std::sin(barIndex * 1.35 + phase));
    return std::max(18 * (slow * fast) + 3, 2.0);
}

} // namespace tovik
