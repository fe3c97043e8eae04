// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/QtScreens.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

namespace tovik {

namespace {

Rect rectOf(const QRect& rect) {
    return {static_cast<double>(rect.x()), static_cast<double>(rect.y()), static_cast<double>(rect.width()),
            static_cast<double>(rect.height())};
}

/// Where no monitor is connected, Qt still lists one without an area.
std::optional<Screen> screenOf(const QScreen* screen) {
    if (!screen || screen->geometry().isEmpty()) {
        return std::nullopt;
    }
    return Screen{rectOf(screen->geometry()), rectOf(screen->availableGeometry())};
}

} // namespace

std::optional<Screen> QtScreens::mainScreen() const {
    return screenOf(QGuiApplication::primaryScreen());
}

std::vector<Screen> QtScreens::screens() const {
    std::vector<Screen> all;
    for (const auto* screen : QGuiApplication::screens()) {
        if (const auto known = screenOf(screen)) {
            all.push_back(*known);
        }
    }
    return all;
}

Point QtScreens::pointerLocation() const {
    const auto position = QCursor::pos();
    return {static_cast<double>(position.x()), static_cast<double>(position.y())};
}

} // namespace tovik
