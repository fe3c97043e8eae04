// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/ScaleEffect.h"

#include <QPainter>

namespace tovik {

ScaleEffect::ScaleEffect(QObject* parent) : QGraphicsEffect(parent) {
    setEnabled(false);
}

void ScaleEffect::setScale(double scale) {
    scale_ = scale;
    setEnabled(scale != 1);
    update();
}

void ScaleEffect::draw(QPainter* painter) {
    const QRectF bounds = sourceBoundingRect();
    const QPixmap picture = sourcePixmap(Qt::LogicalCoordinates, nullptr, NoPad);
    painter->save();
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->translate(bounds.center());
    painter->scale(scale_, scale_);
    painter->translate(-bounds.center());
    painter->drawPixmap(bounds.topLeft(), picture);
    painter->restore();
}

} // namespace tovik
