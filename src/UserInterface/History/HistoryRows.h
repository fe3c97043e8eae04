// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UserInterface/Controls/FrameAnimation.h"

#include <functional>
#include <optional>

namespace tovik {

/// Rows of one height in a list that is scrolled. Lengths are device-independent pixels, rows are counted
/// from 0.
struct ListRows {
    int count = 0;
    int rowHeight = 1;
    int viewHeight = 0;
    /// How far the list is scrolled down.
    int offset = 0;

    /// The row at this height of the view; nothing below the last row or outside the view.
    [[nodiscard]] std::optional<int> rowAt(int y) const;

    /// Where the row begins in the view.
    [[nodiscard]] int topOf(int row) const { return row * rowHeight - offset; }

    /// The rows of which something shows: from first to before end. Both 0 when there are none.
    [[nodiscard]] int firstVisible() const;
    [[nodiscard]] int endVisible() const;

    [[nodiscard]] int largestOffset() const;
    /// The offset nearest to the present one that shows the whole row.
    [[nodiscard]] int offsetShowing(int row) const;

    /// How many rows a key for a page moves on: those that fit whole, at least one.
    [[nodiscard]] int rowsPerPage() const;

    /// How many views are enough to show every visible row, however the list is scrolled.
    [[nodiscard]] static int viewsNeeded(int viewHeight, int rowHeight);
};

/// Draws a row of a list aside, so that an action shows at its trailing edge; the action still has to be
/// pressed. One row at a time. Distances are device-independent pixels towards the leading edge. Main thread.
class RowSwipe {
public:
    /// How wide the action is when it shows whole.
    static constexpr double kActionWidth = 72;

    /// Told how far aside a row is to be shown.
    using ShowOffset = std::function<void(int row, double offset)>;

    RowSwipe(const Clock& clock, MainQueue& queue, ShowOffset showOffset);

    /// The pointer was pressed on a row. Another row that stands aside goes back.
    void begin(int row);
    /// The pointer is this far from where it was pressed.
    void drawTo(double distance);
    /// The pointer was let go: the row comes to rest, aside by the whole action or not at all.
    void end();

    /// A touch pad or a tilted wheel moves the row. It comes to rest when no movement follows.
    void scroll(int row, double distance);

    /// Lets the row that stands aside go back.
    void close();
    /// The same without taking time, because the rows change or move.
    void closeAtOnce();

    /// The row that stands aside, if one does.
    [[nodiscard]] std::optional<int> openRow() const;

private:
    void take(int row);
    void setOffset(double offset);
    void settle(double offset);
    [[nodiscard]] static double offsetAfter(double begin, double distance);

    MainQueue& queue_;
    ShowOffset showOffset_;
    FrameAnimation settling_;
    Subscription wheelPause_;
    int row_ = 0;
    double offset_ = 0;
    double beginOffset_ = 0;
};

} // namespace tovik
