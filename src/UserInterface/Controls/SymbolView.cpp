// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/SymbolView.h"

#include "UserInterface/Controls/SymbolImage.h"

#include <QPaintEvent>
#include <QPainter>

namespace tovik {

SymbolView::SymbolView(const QString& symbolName, const QSize& symbolSize, const QColor& tint,
                       QWidget* parent)
    : QWidget(parent),
      symbolName_(symbolName),
      symbolSize_(symbolSize),
      tint_(tint) {
    setFixedSize(symbolSize);
}

void SymbolView::setSymbolName(const QString& symbolName) {
    symbolName_ = symbolName;
    update();
}

void SymbolView::setTint(const QColor& tint) {
    tint_ = tint;
    update();
}

void SymbolView::setGround(const QColor& color, double cornerRadius) {
    ground_ = color;
    groundRadius_ = cornerRadius;
    update();
}

void SymbolView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (ground_.alpha() > 0) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(ground_);
        painter.drawRoundedRect(rect(), groundRadius_, groundRadius_);
    }
    QRectF target(QPointF(0, 0), QSizeF(symbolSize_));
    target.moveCenter(QRectF(rect()).center());
    symbols::paint(painter, symbolName_, target, tint_);
}

} // namespace tovik
