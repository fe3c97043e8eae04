// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/Screens.h"
#include "UserInterface/Controls/FrameAnimation.h"

#include <QWidget>

#include <functional>
#include <optional>

namespace tovik {

/// A window whose width can be locked: whatever asks for another width, the window keeps its own and its
/// centre. Frames are those of the window's inside, without the window manager's decoration.
class FixedWidthWindow : public QWidget {
    Q_OBJECT

public:
    FixedWidthWindow(const Clock& clock, MainQueue& queue);

    /// Nothing unlocks it.
    void setLockedFrameWidth(std::optional<double> width);
    [[nodiscard]] std::optional<double> lockedFrameWidth() const { return lockedFrameWidth_; }

    void setFrame(const Rect& frame);
    void setFrameAnimated(const Rect& frame, Seconds duration, const QEasingCurve& curve);
    [[nodiscard]] Rect frame() const;

    /// What a frame becomes so that it can be seen on this part of the screen: never with its top edge above
    /// it.
    [[nodiscard]] Rect constrainFrameRect(const Rect& frame, const Rect& visibleFrame) const;

    /// Asked before the window closes; answers whether it may. Without one it may.
    void setShouldClose(std::function<bool()> shouldClose) { shouldClose_ = std::move(shouldClose); }

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void place(const Rect& frame);

    std::optional<double> lockedFrameWidth_;
    FrameAnimation animation_;
    MainQueue& queue_;
    Subscription correction_;
    int refusedCorrections_ = 0;
    std::function<bool()> shouldClose_;
};

} // namespace tovik
