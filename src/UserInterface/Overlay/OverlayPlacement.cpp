// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Overlay/OverlayPlacement.h"

#include <cmath>
#include <optional>

namespace tovik {

namespace {

constexpr double kDistanceFromBottom = 30;

bool contains(const Rect& frame, Point point) {
    return point.x >= frame.x && point.x < frame.right() && point.y >= frame.y && point.y < frame.bottom();
}

std::optional<Screen> screenWithPointer(const Screens& screens) {
    const Point pointer = screens.pointerLocation();
    for (const Screen& screen : screens.screens()) {
        if (contains(screen.frame, pointer)) {
            return screen;
        }
    }
    return screens.mainScreen();
}

} // namespace

Point overlayOrigin(const Screens& screens, Size size) {
    const auto screen = screenWithPointer(screens);
    if (!screen) {
        return {-size.width / 2, kDistanceFromBottom};
    }
    return {screen->frame.midX() - size.width / 2,
            screen->visibleFrame.bottom() - kDistanceFromBottom - size.height};
}

bool isWorthMoving(Point from, Point to) {
    return std::abs(from.x - to.x) > 1 || std::abs(from.y - to.y) > 1;
}

} // namespace tovik
