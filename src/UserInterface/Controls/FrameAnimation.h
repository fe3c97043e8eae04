// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"

#include <QEasingCurve>

#include <functional>

namespace tovik {

/// How animations spend their time.
namespace curve {

/// A cubic curve from (0, 0) to (1, 1) through two control points.
[[nodiscard]] QEasingCurve cubic(double x1, double y1, double x2, double y2);

inline const QEasingCurve linear = QEasingCurve::Linear;
inline const QEasingCurve easeOut = cubic(0, 0, 0.58, 1);
inline const QEasingCurve easeInEaseOut = cubic(0.42, 0, 0.58, 1);

} // namespace curve

/// Leads a value from one state to another over time, one animation at a time. Main thread. While nothing is
/// being animated it costs nothing.
///
/// Not a QVariantAnimation: Qt's animations begin only when the event loop comes to them and run on a clock
/// of their own; with a QAnimationDriver, too, nothing moves before the loop has run. This one runs on the
/// program's clock and queue, so that an animation and the timers beside it (a toast that goes again, a
/// recording that ends during a fade) keep their order, in tests on a clock that is moved by hand too.
class FrameAnimation {
public:
    FrameAnimation(const Clock& clock, MainQueue& queue);

    /// Calls step with 0...1 along the curve, at the last with exactly 1, then completion. An animation that
    /// is under way ends where it stands, without its completion. Both callbacks may start or stop the
    /// animation, or destroy it.
    void start(Seconds duration, const QEasingCurve& curve, std::function<void(double)> step,
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
    QEasingCurve curve_;
    double reached_ = 0;
    std::function<void(double)> step_;
    std::function<void()> completion_;
    Subscription frames_;
    Subscription end_;
};

} // namespace tovik
