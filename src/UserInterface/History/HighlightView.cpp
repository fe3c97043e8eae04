// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/History/HighlightView.h"

#include "UserInterface/Controls/Theme.h"

#include <QPaintEvent>
#include <QPainter>

namespace tovik {

HighlightView::HighlightView(const Rgba& color, double cornerRadius, QWidget* parent)
    : QWidget(parent),
      color_(color),
      cornerRadius_(cornerRadius) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void HighlightView::setAlpha(double alpha) {
    alpha_ = alpha;
    update();
}

void HighlightView::setRing(bool hasRing) {
    hasRing_ = hasRing;
    update();
}

void HighlightView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (alpha_ > 0) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme::color(color_.withAlpha(color_.alpha * alpha_)));
        painter.drawRoundedRect(rect(), cornerRadius_, cornerRadius_);
    }
    if (hasRing_) {
        constexpr double inset = theme::kFocusRingWidth / 2;
        painter.setPen(QPen(theme::color(theme::kAccent), theme::kFocusRingWidth));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), cornerRadius_ - inset,
                                cornerRadius_ - inset);
    }
}

} // namespace tovik
