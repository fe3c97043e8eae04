// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/FrameAnimation.h"

#include <QPointF>

#include <algorithm>
#include <utility>

namespace tovik {

QEasingCurve curve::cubic(double x1, double y1, double x2, double y2) {
    QEasingCurve result(QEasingCurve::BezierSpline);
    result.addCubicBezierSegment(QPointF(x1, y1), QPointF(x2, y2), QPointF(1, 1));
    return result;
}

namespace {

constexpr Seconds kFrame{1.0 / 60};

} // namespace

FrameAnimation::FrameAnimation(const Clock& clock, MainQueue& queue) : clock_(clock), queue_(queue) {}

void FrameAnimation::start(Seconds duration, const QEasingCurve& curve, std::function<void(double)> step,
                           std::function<void()> completion) {
    stop();
    startedAt_ = clock_.now();
    duration_ = duration;
    curve_ = curve;
    reached_ = 0;
    step_ = std::move(step);
    completion_ = std::move(completion);
    frames_ = queue_.every(kFrame, [this] { advance(); });
    // The end does not hang on the frames: when the wall clock is set back, they may take forever.
    end_ = queue_.after(duration, [this] { finish(); });
}

void FrameAnimation::stop() {
    frames_.end();
    end_.end();
    step_ = nullptr;
    completion_ = nullptr;
}

void FrameAnimation::advance() {
    const Seconds elapsed = clock_.now() - startedAt_;
    reached_ = std::max(reached_, std::min(elapsed / duration_, 1.0));
    const auto step = step_;
    step(curve_.valueForProgress(reached_));
}

void FrameAnimation::finish() {
    const auto step = std::move(step_);
    const auto completion = std::move(completion_);
    stop();
    // From here on this object may be gone or busy with the next animation.
    step(1);
    if (completion) {
        completion();
    }
}

} // namespace tovik
