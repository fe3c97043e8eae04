// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

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

} // namespace tovik
