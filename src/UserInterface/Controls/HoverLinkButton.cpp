// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/HoverLinkButton.h"

#include <QPainter>

namespace tovik {

namespace {

constexpr double kGroundAlpha = 0.08;
constexpr double kHoverGroundAlpha = 0.15;
constexpr double kPressedGroundAlpha = 0.22;
constexpr double kGroundRadius = 6;

} // namespace

void HoverLinkButton::setHasGround(bool hasGround) {
    hasGround_ = hasGround;
    update();
}

void HoverLinkButton::setUnderlined(bool underlined) {
    QFont wanted = font();
    wanted.setUnderline(underlined);
    setFont(wanted);
}

void HoverLinkButton::enterEvent(QEnterEvent* event) {
    BorderlessButton::enterEvent(event);
    setUnderlined(!hasGround_);
}

void HoverLinkButton::leaveEvent(QEvent* event) {
    BorderlessButton::leaveEvent(event);
    setUnderlined(false);
}

void HoverLinkButton::paintGround(QPainter& painter) {
    if (!hasGround_) {
        return;
    }
    QColor ground = contentTint();
    const double alpha = isDown() ? kPressedGroundAlpha : isHovered() ? kHoverGroundAlpha : kGroundAlpha;
    ground.setAlphaF(static_cast<float>(alpha));
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawRoundedRect(rect(), kGroundRadius, kGroundRadius);
}

} // namespace tovik
