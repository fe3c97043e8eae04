// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "UserInterface/Controls/FrameAnimation.h"

#include <QWidget>

#include <memory>

class QGraphicsOpacityEffect;
class QLabel;

namespace tovik {

/// A small dark pill near the top of its host that says one thing for a moment. A newer message takes the
/// place of an older one, also of one that is just fading out. Takes no clicks. Main thread.
class ToastView : public QWidget {
    Q_OBJECT

public:
    /// Belongs to the host and keeps to its middle.
    ToastView(const Clock& clock, MainQueue& queue, QWidget* host);
    ~ToastView() override;

    void showSavedToast(const QString& text);

    [[nodiscard]] double alpha() const { return alpha_; }

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Shadow;

    void place();
    void setAlpha(double alpha);
    void fadeOut();

    MainQueue& queue_;
    QWidget* host_;
    QLabel* label_;
    Shadow* shadow_;
    QGraphicsOpacityEffect* effect_;
    FrameAnimation fade_;
    Subscription hideWork_;
    double alpha_ = 0;
};

} // namespace tovik
