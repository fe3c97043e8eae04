// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"

#include <QColor>
#include <QWidget>

namespace tovik {

/// A few bars that sway while they can be seen. Out of sight nothing runs.
class TovikTinyWaveformView : public QWidget {
    Q_OBJECT

public:
    explicit TovikTinyWaveformView(MainQueue& queue, QWidget* parent = nullptr);

    void setColor(const QColor& color);
    [[nodiscard]] const QColor& color() const { return color_; }
    [[nodiscard]] double phase() const { return phase_; }
    [[nodiscard]] bool isAnimating() const { return static_cast<bool>(timer_); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    MainQueue& queue_;
    QColor color_;
    double phase_ = 0;
    Subscription timer_;
};

} // namespace tovik
