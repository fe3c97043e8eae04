// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/History/SwipeActionButton.h"

#include "UserInterface/Controls/Theme.h"

#include <QPainter>

namespace tovik {

namespace {

constexpr int kPressedDarkening = 118;
constexpr int kHoverDarkening = 108;
constexpr int kRest = 100;

} // namespace

SwipeActionButton::SwipeActionButton(const QString& title, QWidget* parent) : BorderlessButton(parent) {
    setText(title);
    setFont(theme::font(theme::kHistoryTextSize, FontWeight::semibold));
    setContentTint(theme::color(theme::kHistoryDeleteText));
    // It is there for the pointer; the keyboard has a key for it.
    setFocusPolicy(Qt::NoFocus);
}

void SwipeActionButton::paintGround(QPainter& painter) {
    const int darkening = isDown() ? kPressedDarkening : isHovered() ? kHoverDarkening : kRest;
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme::color(theme::kHistoryDeleteGround).darker(darkening));
    painter.drawRect(rect());
}

} // namespace tovik
