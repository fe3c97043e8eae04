// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

namespace tovik {

/// How an animation spends its time: a cubic curve from (0, 0) to (1, 1) through two control points.
class TimingCurve {
public:
    constexpr TimingCurve(double x1, double y1, double x2, double y2) : x1_(x1), y1_(y1), x2_(x2), y2_(y2) {}

    /// The part of the way that is done after this part of the time; both 0...1, values outside are clamped.
    [[nodiscard]] double valueAt(double time) const;

    static const TimingCurve linear;
    static const TimingCurve easeOut;
    static const TimingCurve easeInEaseOut;

private:
    double x1_;
    double y1_;
    double x2_;
    double y2_;
};

inline constexpr TimingCurve TimingCurve::linear{0, 0, 1, 1};
inline constexpr TimingCurve TimingCurve::easeOut{0, 0, 0.58, 1};
inline constexpr TimingCurve TimingCurve::easeInEaseOut{0.42, 0, 0.58, 1};

} // namespace tovik
