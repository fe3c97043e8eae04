// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Overlay/WaveformView.h"

#include "Audio/WaveformBar.h"
#include "UserInterface/Controls/Theme.h"

#include <QFontMetricsF>
#include <QPaintEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace tovik {

WaveformView::WaveformView(QWidget* parent) : QWidget(parent), samples_(sampleCount, 0.0) {}

void WaveformView::setLevel(float level) {
    level_ = level;
    samples_.push_back(std::clamp(static_cast<double>(level), 0.0, 1.0));
    samples_.erase(samples_.begin(), samples_.end() - sampleCount);
    update();
}

void WaveformView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const double left = width() / 2.0 - 128.5;
    const double middle = height() / 2.0;
    for (std::size_t bar = 0; bar < samples_.size(); ++bar) {
        const auto look = WaveformBar::forSample(samples_[bar]);
        painter.setBrush(theme::rgb(look.red, look.green, look.blue, look.alpha));
        painter.drawRoundedRect(
            QRectF(left + 6.5 * static_cast<double>(bar), middle - look.height / 2, 3.5, look.height), 1.75,
            1.75);
    }
}

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
