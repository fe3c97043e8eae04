// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Overlay/TabularDigitsLabel.h"

#include <QFontMetricsF>
#include <QPaintEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace tovik {

namespace {

double widestDigit(const QFontMetricsF& metrics) {
    double widest = 0;
    for (char digit = '0'; digit <= '9'; ++digit) {
        widest = std::max(widest, metrics.horizontalAdvance(QLatin1Char(digit)));
    }
    return widest;
}

} // namespace

QList<double> TabularDigitsLabel::characterPositions() const {
    const QFontMetricsF metrics(font());
    const double digitWidth = widestDigit(metrics);
    QList<double> positions{0};
    for (const QChar character : text()) {
        const double width = character.isDigit() ? digitWidth : metrics.horizontalAdvance(character);
        positions.append(positions.last() + width);
    }
    return positions;
}

QSize TabularDigitsLabel::sizeHint() const {
    const QFontMetricsF metrics(font());
    return {static_cast<int>(std::ceil(characterPositions().last())),
            static_cast<int>(std::ceil(metrics.height()))};
}

void TabularDigitsLabel::paintEvent(QPaintEvent* /*event*/) {
    const QFontMetricsF metrics(font());
    const double digitWidth = widestDigit(metrics);
    const double baseline = (height() - metrics.height()) / 2 + metrics.ascent();
    const QList<double> positions = characterPositions();
    QPainter painter(this);
    painter.setFont(font());
    painter.setPen(palette().color(foregroundRole()));
    for (qsizetype index = 0; index < text().size(); ++index) {
        const QChar character = text().at(index);
        const double slack = character.isDigit() ? digitWidth - metrics.horizontalAdvance(character) : 0;
        painter.drawText(QPointF(positions.at(index) + slack / 2, baseline), character);
    }
}

} // namespace tovik
