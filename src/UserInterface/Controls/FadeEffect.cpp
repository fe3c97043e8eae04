// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/FadeEffect.h"

#include <QPainter>
#include <QPixmap>
#include <QWidget>

namespace tovik {

FadeEffect::FadeEffect(QWidget& view) : QGraphicsEffect(&view), view_(view) {}

void FadeEffect::setOpacity(double opacity) {
    if (opacity_ != opacity) {
        opacity_ = opacity;
        update();
    }
}

void FadeEffect::draw(QPainter* painter) {
    const QRect seen = view_.visibleRegion().boundingRect();
    if (opacity_ <= 0 || seen.isEmpty()) {
        return;
    }
    const double ratio = painter->device()->devicePixelRatioF();
    QPixmap sheet(seen.size() * ratio);
    sheet.setDevicePixelRatio(ratio);
    sheet.fill(Qt::transparent);
    // Within draw() the view paints itself as if it had no effect.
    view_.render(&sheet, QPoint(), QRegion(seen), QWidget::DrawChildren);
    painter->setOpacity(painter->opacity() * opacity_);
    painter->drawPixmap(seen.topLeft(), sheet);
}

} // namespace tovik
