// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/QtDesktop.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

#include <gtest/gtest.h>

namespace tovik::test {
namespace {

TEST(QtScreens, whenAMonitorIsThere_itsFramesAreKnownAndItIsTheMainOne) {
    const QtScreens screens;
    const auto* const monitor = QGuiApplication::primaryScreen();
    ASSERT_NE(monitor, nullptr);
    const auto main = screens.mainScreen();
    ASSERT_TRUE(main);
    EXPECT_EQ(main->frame.width, monitor->geometry().width());
    EXPECT_EQ(main->frame.bottom(), monitor->geometry().y() + monitor->geometry().height());
    EXPECT_EQ(main->visibleFrame.height, monitor->availableGeometry().height());
    EXPECT_EQ(screens.screens(), std::vector<Screen>{*main});
}

TEST(QtScreens, whenThePointerMoves_itsPlaceIsKnown) {
    QCursor::setPos(12, 34);
    EXPECT_EQ(QtScreens().pointerLocation(), (Point{12, 34}));
}

} // namespace
} // namespace tovik::test
