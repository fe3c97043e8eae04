// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/TimingCurve.h"

namespace tovik {

namespace {

/// One coordinate of the curve at the parameter s.
double coordinate(double first, double second, double s) {
    const double rest = 1 - s;
    return 3 * rest * rest * s * first + 3 * rest * s * s * second + s * s * s;
}

} // namespace

double TimingCurve::valueAt(double time) const {
    if (time <= 0) {
        return 0;
    }
    if (time >= 1) {
        return 1;
    }
    // x grows with s for control points within 0...1, so halving finds the one s of this time.
    double low = 0;
    double high = 1;
    for (int step = 0; step < 40; ++step) {
        const double middle = (low + high) / 2;
        (coordinate(x1_, x2_, middle) < time ? low : high) = middle;
    }
    return coordinate(y1_, y2_, (low + high) / 2);
}

} // namespace tovik
