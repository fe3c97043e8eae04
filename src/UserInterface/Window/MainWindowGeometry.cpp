// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/MainWindowGeometry.h"

#include <algorithm>

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

Size windowWillResize(Size proposed) {
    return {mainWindowWidth, clampedHeight(proposed.height)};
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

} // namespace tovik
