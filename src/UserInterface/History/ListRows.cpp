// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/History/ListRows.h"

#include <algorithm>

namespace tovik {

std::optional<int> ListRows::rowAt(int y) const {
    if (y < 0 || y >= viewHeight) {
        return std::nullopt;
    }
    const int row = (y + offset) / rowHeight;
    return row < count ? std::optional(row) : std::nullopt;
}

int ListRows::firstVisible() const {
    return std::min(offset / rowHeight, count);
}

int ListRows::endVisible() const {
    return std::min(count, (offset + viewHeight + rowHeight - 1) / rowHeight);
}

int ListRows::largestOffset() const {
    return std::max(0, count * rowHeight - viewHeight);
}

int ListRows::offsetShowing(int row) const {
    const int top = row * rowHeight;
    const int lowest = std::max(0, top + rowHeight - viewHeight);
    return std::clamp(offset, std::min(lowest, top), top);
}

int ListRows::rowsPerPage() const {
    return std::max(1, viewHeight / rowHeight);
}

int ListRows::viewsNeeded(int viewHeight, int rowHeight) {
    return (viewHeight + rowHeight - 1) / rowHeight + 1;
}

} // namespace tovik
