// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/MainWindowLayout.h"

#include <QCloseEvent>
#include <QResizeEvent>

#include <algorithm>
#include <cmath>

namespace tovik {

namespace {

constexpr double kAboveStack = 76;
constexpr double kBelowStack = 20;
constexpr double kFadeBegin = 10;
constexpr double kFadeLength = 68;

double clampedHeight(double height) {
    return std::clamp(height, mainWindowMinHeight, mainWindowMaxHeight);
}

} // namespace

Rect frameWithLockedWidth(Rect frame, std::optional<double> lockedFrameWidth) {
    if (lockedFrameWidth) {
        frame.x = frame.midX() - *lockedFrameWidth / 2;
        frame.width = *lockedFrameWidth;
    }
    return frame;
}

Rect defaultMainWindowFrame(const Rect& visibleFrame) {
    return {visibleFrame.midX() - mainWindowWidth / 2, visibleFrame.midY() - mainWindowDefaultHeight / 2,
            mainWindowWidth, mainWindowDefaultHeight};
}

Rect fittedMainWindowFrame(const Rect& current, double stackFittingHeight) {
    return {current.midX() - mainWindowWidth / 2, current.y, mainWindowWidth,
            clampedHeight(stackFittingHeight + kAboveStack + kBelowStack)};
}

double headerFadeAlpha(double scrollOffset) {
    const double t = std::min((scrollOffset - kFadeBegin) / kFadeLength, 1.0);
    return t >= 0 ? 1 - t : 1;
}

std::vector<SectionHeader> mainWindowSections(bool hasPendingPermissions) {
    std::vector<SectionHeader> sections{
        {kCorrectionsSection, "Review and fix transcript errors", "sparkles", theme::kIndigo},
        {kCleanupSection, "Remove filler words, pauses, and more", "paintbrush.fill",
         theme::rgb(0.15, 0.66, 0.28)},
        {kTranslationSection, "Translate your transcript", "globe", theme::rgb(0, 0.478, 1)},
        {kHistorySection, "View and manage past transcripts", "doc.text", theme::rgb(0.93, 0.5, 0.12)},
    };
    sections.insert(hasPendingPermissions ? sections.begin() : sections.end(),
                    {kPermissionsSection, "Check access and grant what is missing", "checkmark.shield.fill",
                     theme::kAccent});
    return sections;
}

namespace {

// A tiling window manager never gives in; asking it on and on would only make the window flicker.
constexpr int kMostCorrections = 2;

int whole(double value) {
    return static_cast<int>(std::lround(value));
}

} // namespace

FixedWidthWindow::FixedWidthWindow(const Clock& clock, MainQueue& queue)
    : QWidget(nullptr, Qt::Window),
      animation_(clock, queue),
      queue_(queue) {}

void FixedWidthWindow::setLockedFrameWidth(std::optional<double> width) {
    lockedFrameWidth_ = width;
}

Rect FixedWidthWindow::frame() const {
    const QRect inside = geometry();
    return {static_cast<double>(inside.x()), static_cast<double>(inside.y()),
            static_cast<double>(inside.width()), static_cast<double>(inside.height())};
}

void FixedWidthWindow::setFrame(const Rect& frame) {
    animation_.stop();
    place(frameWithLockedWidth(frame, lockedFrameWidth_));
}

void FixedWidthWindow::setFrameAnimated(const Rect& frame, Seconds duration, const QEasingCurve& curve) {
    const Rect from = this->frame();
    const Rect to = frameWithLockedWidth(frame, lockedFrameWidth_);
    if (from == to) {
        animation_.stop();
        return;
    }
    animation_.start(duration, curve, [this, from, to](double done) {
        const auto between = [done](double a, double b) { return a + (b - a) * done; };
        place({between(from.x, to.x), between(from.y, to.y), between(from.width, to.width),
               between(from.height, to.height)});
    });
}

Rect FixedWidthWindow::constrainFrameRect(const Rect& frame, const Rect& visibleFrame) const {
    Rect constrained = frame;
    constrained.y = std::max(constrained.y, visibleFrame.y);
    return frameWithLockedWidth(constrained, lockedFrameWidth_);
}

void FixedWidthWindow::place(const Rect& frame) {
    const QRect target(whole(frame.x), whole(frame.y), whole(frame.width), whole(frame.height));
    if (target.topLeft() == geometry().topLeft()) {
        // Naming the place again would let some window managers shift the window by its decoration.
        resize(target.size());
    } else {
        setGeometry(target);
    }
}

void FixedWidthWindow::closeEvent(QCloseEvent* event) {
    if (shouldClose_ && !shouldClose_()) {
        event->ignore();
        return;
    }
    QWidget::closeEvent(event);
}

void FixedWidthWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (!lockedFrameWidth_ || event->size().width() == whole(*lockedFrameWidth_)) {
        refusedCorrections_ = 0;
        return;
    }
    if (refusedCorrections_ < kMostCorrections) {
        ++refusedCorrections_;
        correction_ = queue_.after(Seconds{0}, [this] { setFrame(frame()); });
    }
}

} // namespace tovik
