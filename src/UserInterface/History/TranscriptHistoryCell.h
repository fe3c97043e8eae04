// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "UserInterface/Controls/Buttons.h"
#include "UserInterface/Controls/FrameAnimation.h"
#include "UserInterface/Controls/Theme.h"

#include <QLabel>
#include <QString>
#include <QStringList>
#include <QWidget>

namespace tovik {

/// A text in a few lines at most, which ends in an ellipsis where they do not hold all of it. The whole text
/// is still its text. Costs the same for a text of any length.
class ClampedLabel : public QLabel {
    Q_OBJECT

public:
    explicit ClampedLabel(int mostLines, QWidget* parent = nullptr);

    /// What shows at this width, line by line.
    [[nodiscard]] QStringList shownLines(int width) const;

    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const int mostLines_;
};

/// A rounded ground that comes and goes beneath what lies on it. Out of sight at first; takes no clicks.
class HighlightView : public QWidget {
    Q_OBJECT

public:
    HighlightView(const QColor& color, double cornerRadius, QWidget* parent);

    void setAlpha(double alpha);
    [[nodiscard]] double alpha() const { return alpha_; }

    /// A ring around it that says that the keyboard is here; seen also while the ground is not.
    void setRing(bool hasRing);
    [[nodiscard]] bool hasRing() const { return hasRing_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const QColor color_;
    const double cornerRadius_;
    double alpha_ = 0;
    bool hasRing_ = false;
};

/// The action that shows beside a row that was swiped aside: white on a colour that warns.
class SwipeActionButton : public BorderlessButton {
    Q_OBJECT

public:
    explicit SwipeActionButton(const QString& title, QWidget* parent = nullptr);

protected:
    void paintGround(QPainter& painter) override;
};

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
    void fadeHighlight(double to, Seconds duration, const QEasingCurve& curve);
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
