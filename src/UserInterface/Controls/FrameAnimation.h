// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Clock.h"
#include "Platform/MainQueue.h"
#include "UserInterface/Controls/TimingCurve.h"

#include <functional>

namespace tovik {

/// Leads a value from one state to another over time, one animation at a time. Main thread. While nothing is
/// being animated it costs nothing.
class FrameAnimation {
public:
    FrameAnimation(const Clock& clock, MainQueue& queue);

    /// Calls step with 0...1 along the curve, at the last with exactly 1, then completion. An animation that
    /// is under way ends where it stands, without its completion. Both callbacks may start or stop the
    /// animation, or destroy it.
    void start(Seconds duration, TimingCurve curve, std::function<void(double)> step,
               std::function<void()> completion = {});

    /// Leaves the value where it stands; no callback follows.
    void stop();

    [[nodiscard]] bool isRunning() const { return static_cast<bool>(end_); }

private:
    void advance();
    void finish();

    const Clock& clock_;
    MainQueue& queue_;
    Date startedAt_;
    Seconds duration_{0};
    TimingCurve curve_ = TimingCurve::linear;
    double reached_ = 0;
    std::function<void(double)> step_;
    std::function<void()> completion_;
    Subscription frames_;
    Subscription end_;
};

} // namespace tovik
