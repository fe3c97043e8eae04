// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/WaveformView.h"

#include "UserInterface/Theme.h"

#include <QPaintEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace tovik {

namespace {

double barHeight(double v) {
    const double h = std::min(v < 0.045 ? 3.5 : v * 22 + 4, 26.0);
    return std::max(h, 3.5);
}

Rgba barColor(double v) {
    if (v <= 0.08) {
        return Rgba::white(0.72, 0.76);
    }
    const double t = std::clamp((v - 0.08) / 0.92, 0.0, 1.0);
    return {0.66 + 0.32 * t, 0.58 - 0.02 * t, 0.5 - 0.25 * t, 0.84 + 0.16 * t};
}

} // namespace

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
        const double v = std::pow(samples_[bar], 0.62);
        const double h = barHeight(v);
        painter.setBrush(theme::color(barColor(v)));
        painter.drawRoundedRect(QRectF(left + 6.5 * static_cast<double>(bar), middle - h / 2, 3.5, h), 1.75,
                                1.75);
    }
}

} // namespace tovik
