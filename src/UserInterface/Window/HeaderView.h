// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"

#include <QColor>
#include <QWidget>

class QLabel;

namespace tovik {

class BorderlessButton;

inline constexpr Seconds kTinyWaveformInterval{1.0 / 24};
inline constexpr double kTinyWaveformPhaseStep = 0.16;
inline constexpr double kTinyWaveformBarWidth = 2;
inline constexpr double kTinyWaveformBarRadius = 1;
inline constexpr double kTinyWaveformStep = 7;
inline constexpr double kTinyWaveformStart = 1;

/// Height of one bar of the header's small waveform, 2...21.
[[nodiscard]] double tinyWaveformBarHeight(int barIndex, double phase);

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

/// The program's icon, sharp on every screen.
class ApplicationIconView : public QWidget {
    Q_OBJECT

public:
    explicit ApplicationIconView(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// What stays at the top of the main window while the cards scroll beneath it: what the program is, that it
/// is ready, and the keys to hold.
class HeaderView : public QWidget {
    Q_OBJECT

public:
    explicit HeaderView(MainQueue& queue, QWidget* parent = nullptr);

    [[nodiscard]] BorderlessButton& moreOptionsButton() { return *moreOptions_; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    QWidget* makeStatusLine(MainQueue& queue);
    QWidget* makeShortcutRows();
    void applyColors();

    BorderlessButton* moreOptions_;
    QLabel* title_;
    QLabel* subtitle_;
    QLabel* status_ = nullptr;
    TovikTinyWaveformView* waveform_ = nullptr;
};

} // namespace tovik
