// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"

#include <QWidget>

class QLabel;
class QVBoxLayout;

namespace tovik {

class BorderlessButton;
class TovikTinyWaveformView;

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
