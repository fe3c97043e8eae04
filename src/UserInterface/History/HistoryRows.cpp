// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/History/HistoryRows.h"

#include <algorithm>
#include <utility>

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

namespace {

/// Of what the row is drawn beyond the action, this much shows.
constexpr double kGivingWay = 0.25;
constexpr double kMostBeyond = 24;
constexpr Seconds kSettling{0.2};
/// Wheels do not tell when a movement ends.
constexpr Seconds kPauseOfWheels{0.3};

} // namespace

RowSwipe::RowSwipe(const Clock& clock, MainQueue& queue, ShowOffset showOffset)
    : queue_(queue),
      showOffset_(std::move(showOffset)),
      settling_(clock, queue) {}

void RowSwipe::begin(int row) {
    take(row);
    beginOffset_ = offset_;
}

void RowSwipe::drawTo(double distance) {
    setOffset(offsetAfter(beginOffset_, distance));
}

void RowSwipe::end() {
    settle(offset_ >= kActionWidth / 2 ? kActionWidth : 0);
}

void RowSwipe::scroll(int row, double distance) {
    take(row);
    setOffset(std::min(std::max(0.0, offset_ + distance), kActionWidth));
    wheelPause_ = queue_.after(kPauseOfWheels, [this] { end(); });
}

void RowSwipe::close() {
    settle(0);
}

void RowSwipe::closeAtOnce() {
    settling_.stop();
    wheelPause_.end();
    setOffset(0);
}

std::optional<int> RowSwipe::openRow() const {
    return offset_ > 0 ? std::optional(row_) : std::nullopt;
}

void RowSwipe::take(int row) {
    settling_.stop();
    wheelPause_.end();
    if (row != row_) {
        setOffset(0);
        row_ = row;
    }
}

void RowSwipe::setOffset(double offset) {
    if (offset != offset_) {
        offset_ = offset;
        showOffset_(row_, offset);
    }
}

void RowSwipe::settle(double offset) {
    wheelPause_.end();
    if (offset == offset_) {
        settling_.stop();
        return;
    }
    const double from = offset_;
    settling_.start(kSettling, curve::easeOut,
                    [this, from, offset](double done) { setOffset(from + (offset - from) * done); });
}

double RowSwipe::offsetAfter(double begin, double distance) {
    const double wanted = std::max(0.0, begin + distance);
    const double beyond = std::max(0.0, wanted - kActionWidth);
    return std::min(wanted, kActionWidth) + std::min(beyond * kGivingWay, kMostBeyond);
}

} // namespace tovik
