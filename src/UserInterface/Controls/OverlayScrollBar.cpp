// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/OverlayScrollBar.h"

#include <QPaintEvent>
#include <QPainter>

#include <algorithm>

namespace tovik {

namespace {

constexpr int kWidth = 10;
constexpr int kHandleInset = 2;
constexpr int kShortestHandle = 28;
constexpr double kHandleAlpha = 0.35;
constexpr double kHandleHoverAlpha = 0.55;

} // namespace

OverlayScrollBar::OverlayScrollBar(QScrollBar& mirrored, QWidget* parent)
    : QScrollBar(Qt::Vertical, parent),
      mirrored_(mirrored) {
    setAttribute(Qt::WA_Hover);
    connect(&mirrored, &QScrollBar::rangeChanged, this, &OverlayScrollBar::adoptRange);
    // Scroll areas set the size of a page after the range, and nothing tells of that.
    connect(&mirrored, &QScrollBar::rangeChanged, this, &OverlayScrollBar::adoptRange, Qt::QueuedConnection);
    connect(&mirrored, &QScrollBar::valueChanged, this, &QScrollBar::setValue);
    connect(this, &QScrollBar::valueChanged, &mirrored, &QScrollBar::setValue);
    adoptRange();
}

QSize OverlayScrollBar::sizeHint() const {
    return {kWidth, QScrollBar::sizeHint().height()};
}

void OverlayScrollBar::adoptRange() {
    setRange(mirrored_.minimum(), mirrored_.maximum());
    setPageStep(mirrored_.pageStep());
    setSingleStep(mirrored_.singleStep());
    setValue(mirrored_.value());
    setVisible(maximum() > minimum());
}

void OverlayScrollBar::paintEvent(QPaintEvent* /*event*/) {
    const double whole = maximum() - minimum() + pageStep();
    const double length = std::max<double>(kShortestHandle, height() * pageStep() / whole);
    const double travel = height() - length;
    const double begin = maximum() > minimum() ? travel * (value() - minimum()) / (maximum() - minimum()) : 0;
    QColor ink = palette().color(QPalette::WindowText);
    ink.setAlphaF(static_cast<float>(underMouse() || isSliderDown() ? kHandleHoverAlpha : kHandleAlpha));
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ink);
    const QRectF handle(kHandleInset, begin + kHandleInset, width() - 2 * kHandleInset,
                        length - 2 * kHandleInset);
    painter.drawRoundedRect(handle, handle.width() / 2, handle.width() / 2);
}

} // namespace tovik
