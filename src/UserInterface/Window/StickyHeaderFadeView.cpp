// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/StickyHeaderFadeView.h"

#include <QLinearGradient>
#include <QPaintEvent>
#include <QPainter>

namespace tovik {

StickyHeaderFadeView::StickyHeaderFadeView(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void StickyHeaderFadeView::setColor(const QColor& color) {
    color_ = color;
    update();
}

void StickyHeaderFadeView::setAlpha(double alpha) {
    if (alpha_ != alpha) {
        alpha_ = alpha;
        update();
    }
}

void StickyHeaderFadeView::paintEvent(QPaintEvent* /*event*/) {
    QColor end = color_;
    end.setAlpha(0);
    QLinearGradient gradient(0, 0, 0, height());
    gradient.setColorAt(0, color_);
    gradient.setColorAt(1, end);
    QPainter painter(this);
    painter.setOpacity(alpha_);
    painter.fillRect(rect(), gradient);
}

} // namespace tovik
