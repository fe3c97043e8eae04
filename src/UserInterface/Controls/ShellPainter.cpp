// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/ShellPainter.h"

#include "UserInterface/Controls/Theme.h"

#include <QPainter>

namespace tovik {

void paintShell(QPainter& painter, const QRect& place, bool hasFocus) {
    const double width = hasFocus ? theme::kFocusRingWidth : theme::kShellBorderWidth;
    // A thin line is drawn along the middle of the outermost pixels: between them it would be a blur of two.
    const double inset = hasFocus ? width / 2 : 0.5;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme::color(hasFocus ? theme::kAccent : theme::kSeparator), width));
    painter.setBrush(theme::color(theme::kShellBackground));
    painter.drawRoundedRect(QRectF(place).adjusted(inset, inset, -inset, -inset),
                            theme::kShellCornerRadius - inset, theme::kShellCornerRadius - inset);
}

} // namespace tovik
