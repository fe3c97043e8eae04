// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Overlay/WaveformView.h"

#include "Audio/WaveformBar.h"
#include "UserInterface/Controls/Theme.h"

#include <QPaintEvent>
#include <QPainter>

#include <algorithm>
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
        painter.setBrush(theme::color({look.red, look.green, look.blue, look.alpha}));
        painter.drawRoundedRect(
            QRectF(left + 6.5 * static_cast<double>(bar), middle - look.height / 2, 3.5, look.height), 1.75,
            1.75);
    }
}

} // namespace tovik
