// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/ElidedLabel.h"

#include <QPaintEvent>
#include <QPainter>

namespace tovik {

QSize ElidedLabel::minimumSizeHint() const {
    return {0, QLabel::minimumSizeHint().height()};
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(rect(), static_cast<int>(Qt::AlignVCenter | Qt::AlignLeading),
                     fontMetrics().elidedText(text(), Qt::ElideRight, width()));
}

void ElidedLabel::resizeEvent(QResizeEvent* event) {
    QLabel::resizeEvent(event);
    setToolTip(fontMetrics().horizontalAdvance(text()) > width() ? text() : QString());
}

} // namespace tovik
