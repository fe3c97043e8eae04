// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/HoverFillButton.h"

#include <QPainter>

#include <algorithm>

namespace tovik {

namespace {

constexpr double kHoverAlpha = 0.08;
constexpr double kPressedAlpha = 0.16;
constexpr double kLargestRadius = 7;

} // namespace

double HoverFillButton::fillAlpha() const {
    if (isDown()) {
        return kPressedAlpha;
    }
    return isHovered() ? kHoverAlpha : 0;
}

void HoverFillButton::paintGround(QPainter& painter) {
    const double alpha = fillAlpha();
    if (alpha <= 0) {
        return;
    }
    QColor fill = contentTint();
    fill.setAlphaF(static_cast<float>(alpha));
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    const double radius = std::min<double>(kLargestRadius, std::min(width(), height()) / 2.0);
    painter.drawRoundedRect(rect(), radius, radius);
}

} // namespace tovik
