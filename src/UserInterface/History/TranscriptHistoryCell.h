// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Clock.h"
#include "Platform/MainQueue.h"
#include "UserInterface/Controls/FrameAnimation.h"

#include <QString>
#include <QWidget>

class QLabel;

namespace tovik {

class ClampedLabel;
class HighlightView;
class HoverFillButton;
class SwipeActionButton;

/// One row of the transcript history: the text, when it was said, and a button that copies it. Cells are used
/// again for other rows. Clicks beside its buttons are left to the list.
class TranscriptHistoryCell : public QWidget {
    Q_OBJECT

public:
    struct Contents {
        QString text;
        QString date;
        bool operator==(const Contents&) const = default;
    };

    TranscriptHistoryCell(const Clock& clock, MainQueue& queue, QWidget* parent);
    ~TranscriptHistoryCell() override;

    /// The row's number is its buttons' tag. A cell that gets another transcript is at rest.
    void setContents(int row, const Contents& contents);
    [[nodiscard]] int row() const { return row_; }
    [[nodiscard]] const Contents& contents() const { return contents_; }

    /// Selected: on a quiet ground. Current: within a ring, and its button is reached with the Tab key.
    void setSelected(bool selected);
    void setCurrent(bool current, bool hasRing);
    [[nodiscard]] bool isCurrent() const { return isCurrent_; }
    [[nodiscard]] bool isSelected() const { return isSelected_; }
    [[nodiscard]] HighlightView& highlight() { return *highlight_; }

    /// Lets the highlight come, stay a moment and go, from the beginning also while it is under way.
    void flashCopiedState();

    /// How far the row stands aside towards its leading edge, where the action shows.
    void setSwipeOffset(double offset);
    [[nodiscard]] double swipeOffset() const { return swipeOffset_; }

    [[nodiscard]] HoverFillButton& copyButton() { return *copyButton_; }
    [[nodiscard]] SwipeActionButton& deleteButton() { return *deleteButton_; }
    [[nodiscard]] ClampedLabel& textLabel() { return *textLabel_; }

signals:
    void copyClicked(int row);
    void deleteClicked(int row);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void fadeHighlight(double to, Seconds duration, TimingCurve curve);
    void endFlash();
    void place();
    void placeContent();

    MainQueue& queue_;
    QWidget* content_;
    HighlightView* highlight_;
    ClampedLabel* textLabel_;
    QLabel* dateLabel_;
    HoverFillButton* copyButton_;
    SwipeActionButton* deleteButton_;
    FrameAnimation fade_;
    Subscription fadeOut_;
    Contents contents_;
    int row_ = -1;
    double swipeOffset_ = 0;
    bool isSelected_ = false;
    bool isCurrent_ = false;
};

} // namespace tovik
