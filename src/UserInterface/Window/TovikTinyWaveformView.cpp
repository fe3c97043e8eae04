// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/TovikTinyWaveformView.h"

#include "UserInterface/Controls/Theme.h"
#include "UserInterface/Window/TinyWaveform.h"

#include <QPaintEvent>
#include <QPainter>

namespace tovik {

TovikTinyWaveformView::TovikTinyWaveformView(MainQueue& queue, QWidget* parent)
    : QWidget(parent),
      queue_(queue),
      color_(theme::color(theme::kAccent)) {}

void TovikTinyWaveformView::setColor(const QColor& color) {
    color_ = color;
    update();
}

void TovikTinyWaveformView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!timer_) {
        timer_ = queue_.every(kTinyWaveformInterval, [this] {
            phase_ += kTinyWaveformPhaseStep;
            update();
        });
    }
}

void TovikTinyWaveformView::hideEvent(QHideEvent* event) {
    timer_.end();
    QWidget::hideEvent(event);
}

void TovikTinyWaveformView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color_);
    const double middle = height() / 2.0;
    int index = 0;
    for (double x = kTinyWaveformStart; x < width(); x += kTinyWaveformStep) {
        const double barHeight = tinyWaveformBarHeight(index++, phase_);
        painter.drawRoundedRect(QRectF(x, middle - barHeight / 2, kTinyWaveformBarWidth, barHeight),
                                kTinyWaveformBarRadius, kTinyWaveformBarRadius);
    }
}

} // namespace tovik
