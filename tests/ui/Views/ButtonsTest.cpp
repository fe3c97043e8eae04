// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/Buttons.h"

#include "UserInterface/Controls/Theme.h"

#include <QCoreApplication>
#include <QEnterEvent>
#include <QImage>

#include <gtest/gtest.h>

namespace tovik {
namespace {

void enter(QWidget& view) {
    view.setAttribute(Qt::WA_UnderMouse);
    QEnterEvent event(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
    QCoreApplication::sendEvent(&view, &event);
}

void leave(QWidget& view) {
    view.setAttribute(Qt::WA_UnderMouse, false);
    QEvent event(QEvent::Leave);
    QCoreApplication::sendEvent(&view, &event);
}

QImage drawn(QWidget& view) {
    QImage image(view.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    view.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    return image;
}

TEST(HoverFillButton, getsAGroundUnderThePointerAndAStrongerOneWhenPressed) {
    HoverFillButton button;
    EXPECT_EQ(button.fillAlpha(), 0);
    enter(button);
    const double hovered = button.fillAlpha();
    EXPECT_GT(hovered, 0);
    button.setDown(true);
    EXPECT_GT(button.fillAlpha(), hovered);
    button.setDown(false);
    leave(button);
    EXPECT_EQ(button.fillAlpha(), 0);
}

TEST(HoverLinkButton, isUnderlinedUnderThePointer) {
    HoverLinkButton button;
    button.setText(QStringLiteral("Check for updates"));
    enter(button);
    EXPECT_TRUE(button.font().underline());
    leave(button);
    EXPECT_FALSE(button.font().underline());
}

TEST(HoverLinkButton, onAGround_growsStrongerInsteadOfUnderlined) {
    HoverLinkButton button;
    button.setHasGround(true);
    button.setContentTint(Qt::blue);
    button.setFixedSize(66, 24);
    const int before = drawn(button).pixelColor(4, 12).alpha();
    enter(button);
    EXPECT_FALSE(button.font().underline());
    EXPECT_GT(drawn(button).pixelColor(4, 12).alpha(), before);
}

TEST(BorderlessButton, whenItHasTheKeyboard_showsARing) {
    QWidget window;
    HoverFillButton button(&window);
    button.setFixedSize(28, 28);
    // Away from the pointer.
    window.setGeometry(400, 400, 200, 100);
    window.show();
    window.activateWindow();
    QCoreApplication::processEvents();
    window.setFocus();
    EXPECT_EQ(drawn(button).pixelColor(14, 0).alpha(), 0);
    button.setFocus(Qt::TabFocusReason);
    ASSERT_TRUE(button.hasFocus());
    const QColor ring = drawn(button).pixelColor(14, 0);
    EXPECT_GT(ring.alpha(), 200);
    EXPECT_EQ(ring.rgb(), theme::kAccent.rgb());
}

TEST(BorderlessButton, isReachedByTabOnly) {
    const HoverFillButton button;
    EXPECT_EQ(button.focusPolicy(), Qt::TabFocus);
}

} // namespace
} // namespace tovik
