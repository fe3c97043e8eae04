// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/Screens.h"
#include "Platform/UserInterface.h"
#include "UserInterface/Controls/Theme.h"
#include "UserInterface/Controls/WindowSystem.h"

#include <QWidget>

#include <memory>

namespace tovik {

/// A window without a frame that may still take the keyboard and be the main window, where it is shown in a
/// way that offers them.
class KeyableWindow : public QWidget {
    Q_OBJECT

public:
    explicit KeyableWindow(Qt::WindowFlags flags = {});
};

struct PanelStyle {
    QColor background;
    double cornerRadius = 0;
    double borderWidth = 0;
    QColor borderColor = {};
};

/// A small rounded panel above every other window, full-screen ones included, on all desktops. It is never
/// given the keyboard, and clicks go through it to what lies beneath. Hidden and transparent at first.
class FloatingPanel : public KeyableWindow {
    Q_OBJECT

public:
    FloatingPanel(const PanelStyle& style, const Rect& frame, const Compositing& compositing);
    ~FloatingPanel() override;

    /// Fills the panel; what it shows goes in here.
    [[nodiscard]] QWidget& content() { return *content_; }

    [[nodiscard]] Rect panelFrame() const;
    void setOrigin(Point origin);

    /// 0 invisible to 1; where nothing composites windows, the panel is visible throughout.
    void setAlpha(double alpha);
    [[nodiscard]] double alpha() const { return alpha_; }

    /// Size of what the panel shows, around its centre; what grows beyond the panel is cut off.
    void setContentScale(double scale);
    [[nodiscard]] double contentScale() const;

    void orderFront();
    void orderOut();

private:
    class ScaleEffect;
    class Shadow;

    PanelStyle style_;
    const Compositing& compositing_;
    double alpha_ = 1;
    QWidget* content_;
    ScaleEffect* scaleEffect_;
    std::unique_ptr<Shadow> shadow_;
};

/// Hint panels as windows of this desktop.
class QtHintPanels : public HintPanels {
public:
    QtHintPanels(const Clock& clock, MainQueue& queue, const Compositing& compositing);

    [[nodiscard]] std::unique_ptr<HintPanel> makePanel(const HintDescription& description) override;

private:
    const Clock& clock_;
    MainQueue& queue_;
    const Compositing& compositing_;
};

} // namespace tovik
