// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/Screens.h"
#include "Platform/UserInterface.h"
#include "Platform/Workspace.h"
#include "UserInterface/Controls/FrameAnimation.h"
#include "UserInterface/Controls/WindowSystem.h"

#include <QLabel>
#include <QWidget>

#include <memory>
#include <optional>
#include <vector>

namespace tovik {

/// The last 40 levels of the microphone as bars, newest on the right. Redrawn once for a level, at the most.
class WaveformView : public QWidget {
    Q_OBJECT

public:
    static constexpr int sampleCount = 40;

    explicit WaveformView(QWidget* parent = nullptr);

    [[nodiscard]] float level() const { return level_; }
    /// Levels outside 0...1 count as the nearest within.
    void setLevel(float level);

    /// Oldest first.
    [[nodiscard]] const std::vector<double>& samples() const { return samples_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    float level_ = 0;
    std::vector<double> samples_;
};

/// A line of text whose digits are all equally wide, so that a running time does not tremble.
class TabularDigitsLabel : public QLabel {
    Q_OBJECT

public:
    using QLabel::QLabel;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

    /// Where each character of the text begins, from the left, and at the last where the text ends.
    [[nodiscard]] QList<double> characterPositions() const;

protected:
    void paintEvent(QPaintEvent* event) override;
};

class FloatingPanel;
class TabularDigitsLabel;
class WaveformView;

struct Size {
    double width = 0;
    double height = 0;

    bool operator==(const Size&) const = default;
};

/// Where the top left corner of a recording overlay of this size belongs: in the middle of the screen with
/// the pointer, 30 above the bottom of what panels and docks leave free.
[[nodiscard]] Point overlayOrigin(const Screens& screens, Size size);

/// Whether moving from one place to the other is worth it: more than one point on either axis.
[[nodiscard]] bool isWorthMoving(Point from, Point to);

/// The recording pill: a small dark capsule near the bottom of the screen with the pointer, with the latest
/// levels on its left and the recording time on its right. Its window, its timers and its observer exist only
/// while it is on screen. Main thread.
class WaveformOverlay : public RecordingOverlay {
public:
    WaveformOverlay(const Clock& clock, MainQueue& queue, const Screens& screens, Workspace& workspace,
                    const Compositing& compositing);
    ~WaveformOverlay() override;

    /// While the overlay fades out it still counts as shown: it takes the new time and goes all the same.
    void show(Date startedAt) override;
    void hide() override;
    void tovik() override;
    void setLevel(float level) override;

    /// Null while nothing is on screen; so are the views.
    [[nodiscard]] FloatingPanel* window() const { return window_.get(); }
    [[nodiscard]] WaveformView* waveformView() const { return waveformView_; }
    [[nodiscard]] TabularDigitsLabel* elapsedLabel() const { return elapsedLabel_; }

private:
    void makeWindow();
    void layOutContent();
    void fadeIn();
    void fadeOut();
    void updateElapsedLabel();
    void startElapsedTimer();
    void startFollowingActiveSpace();
    void activeSpaceChanged();
    void reposition(bool animated);
    [[nodiscard]] Point origin() const;

    const Clock& clock_;
    MainQueue& queue_;
    const Screens& screens_;
    Workspace& workspace_;
    const Compositing& compositing_;

    std::unique_ptr<FloatingPanel> window_;
    WaveformView* waveformView_ = nullptr;
    TabularDigitsLabel* elapsedLabel_ = nullptr;
    Subscription followTimer_;
    Subscription elapsedTimer_;
    Subscription spaceObserver_;
    std::optional<Date> startedAt_;
    FrameAnimation fade_;
    FrameAnimation movement_;
    FrameAnimation beat_;
};

} // namespace tovik
