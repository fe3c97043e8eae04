// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/History/TranscriptHistoryTable.h"

#include "UserInterface/Controls/Buttons.h"
#include "UserInterface/Controls/Painting.h"
#include "UserInterface/Controls/Theme.h"

#include <QAccessible>
#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace tovik {

namespace {

constexpr int kScrollStep = 20;
/// Keeps the scroll bar out of the rounded corners.
constexpr int kBarInset = 4;
/// Wheels count in eighths of a degree; a notch of 15 degrees is worth this many pixels.
constexpr double kPixelsPerNotch = 60;
constexpr double kNotch = 120;

} // namespace

TranscriptHistoryTable::TranscriptHistoryTable(const Clock& clock, MainQueue& queue,
                                               ContentsOfRow contentsOfRow, QWidget* parent)
    : QWidget(parent),
      contentsOfRow_(std::move(contentsOfRow)),
      rows_{.rowHeight = theme::kHistoryRowHeight, .viewHeight = theme::kHistoryTableHeight},
      bar_(new QScrollBar(Qt::Vertical, this)),
      swipe_(clock, queue, [this](int row, double offset) {
          if (auto* cell = cellAt(row)) {
              cell->setSwipeOffset(offset);
          }
      }) {
    setObjectName(QStringLiteral("historyTableView"));
    setFixedHeight(theme::kHistoryTableHeight);
    setFocusPolicy(Qt::StrongFocus);
    const int cellCount = ListRows::viewsNeeded(rows_.viewHeight, rows_.rowHeight);
    for (int index = 0; index < cellCount; ++index) {
        auto* cell = new TranscriptHistoryCell(clock, queue, this);
        cell->hide();
        connect(cell, &TranscriptHistoryCell::copyClicked, this, &TranscriptHistoryTable::copyRequested);
        connect(cell, &TranscriptHistoryCell::deleteClicked, this, &TranscriptHistoryTable::deleteRequested);
        cells_.push_back(cell);
    }
    bar_->hide();
    bar_->setSingleStep(kScrollStep);
    overlayBar_ = new OverlayScrollBar(*bar_, this);
    connect(bar_, &QScrollBar::valueChanged, this, [this](int offset) {
        swipe_.closeAtOnce();
        rows_.offset = offset;
        showRows();
    });
}

TranscriptHistoryTable::~TranscriptHistoryTable() = default;

QSize TranscriptHistoryTable::sizeHint() const {
    return {theme::kHistoryRowHeight, theme::kHistoryTableHeight};
}

void TranscriptHistoryTable::reloadData(int rowCount) {
    swipe_.closeAtOnce();
    rows_.count = rowCount;
    const auto withinRows = [rowCount](std::optional<int> row) {
        return row && rowCount > 0 ? std::optional(std::min(*row, rowCount - 1)) : std::nullopt;
    };
    currentRow_ = withinRows(currentRow_);
    selectedRow_ = withinRows(selectedRow_);
    bar_->setRange(0, rows_.largestOffset());
    bar_->setPageStep(rows_.viewHeight);
    rows_.offset = bar_->value();
    showRows();
    if (hasFocus() && !currentRow_ && rowCount > 0) {
        makeCurrent(0);
    }
}

void TranscriptHistoryTable::setPlaceholder(const QString& text) {
    placeholder_ = text;
    update();
}

void TranscriptHistoryTable::showRows() {
    const int first = rows_.firstVisible();
    const int end = rows_.endVisible();
    for (auto* cell : cells_) {
        // One that stays in use is not hidden even for a moment: its button may have the keyboard.
        const int row = cell->row();
        if (row < first || row >= end) {
            cell->hide();
        }
    }
    const int barWidth = rows_.largestOffset() > 0 ? overlayBar_->sizeHint().width() : 0;
    for (int row = first; row < end; ++row) {
        auto* cell = cells_[static_cast<std::size_t>(row) % cells_.size()];
        const QRect place(0, rows_.topOf(row), width() - barWidth, rows_.rowHeight);
        cell->setGeometry(QStyle::visualRect(layoutDirection(), rect(), place));
        cell->setContents(row, contentsOfRow_(row));
        cell->setSelected(showsSelection_ && selectedRow_ == row);
        cell->setCurrent(currentRow_ == row, currentRow_ == row && hasFocus());
        cell->setVisible(true);
    }
    update();
}

TranscriptHistoryCell* TranscriptHistoryTable::cellAt(int row) const {
    if (row < rows_.firstVisible() || row >= rows_.endVisible()) {
        return nullptr;
    }
    return cells_[static_cast<std::size_t>(row) % cells_.size()];
}

std::vector<TranscriptHistoryCell*> TranscriptHistoryTable::visibleCells() const {
    std::vector<TranscriptHistoryCell*> visible;
    for (int row = rows_.firstVisible(); row < rows_.endVisible(); ++row) {
        visible.push_back(cellAt(row));
    }
    return visible;
}

std::optional<int> TranscriptHistoryTable::rowAt(const QPoint& place) const {
    return place.x() >= 0 && place.x() < width() ? rows_.rowAt(place.y()) : std::nullopt;
}

void TranscriptHistoryTable::scrollToRow(int row) {
    bar_->setValue(rows_.offsetShowing(row));
}

void TranscriptHistoryTable::makeCurrent(int row) {
    currentRow_ = row;
    select(row);
    scrollToRow(row);
    showRows();
    tellAssistivePrograms();
}

void TranscriptHistoryTable::select(std::optional<int> row) {
    selectedRow_ = row;
    for (auto* cell : visibleCells()) {
        cell->setSelected(showsSelection_ && selectedRow_ == cell->row());
    }
}

void TranscriptHistoryTable::deselectAll() {
    select(std::nullopt);
}

void TranscriptHistoryTable::setSelectionHighlight(bool isShown) {
    showsSelection_ = isShown;
    select(selectedRow_);
}

void TranscriptHistoryTable::flashHistoryRow(int row) {
    if (row < 0 || row >= rows_.count) {
        return;
    }
    deselectAll();
    setSelectionHighlight(false);
    if (auto* cell = cellAt(row)) {
        cell->flashCopiedState();
    }
}

void TranscriptHistoryTable::tellAssistivePrograms() const {
    if (auto* cell = currentRow_ && hasFocus() ? cellAt(*currentRow_) : nullptr) {
        QAccessibleEvent focus(cell, QAccessible::Focus);
        QAccessible::updateAccessibility(&focus);
    }
}

bool TranscriptHistoryTable::moveBy(QKeyEvent& event) {
    if (rows_.count == 0) {
        return false;
    }
    const int row = currentRow_.value_or(-1);
    int wanted = 0;
    switch (event.key()) {
    case Qt::Key_Up:
        wanted = row - 1;
        break;
    case Qt::Key_Down:
        wanted = row + 1;
        break;
    case Qt::Key_PageUp:
        wanted = row - rows_.rowsPerPage();
        break;
    case Qt::Key_PageDown:
        wanted = row + rows_.rowsPerPage();
        break;
    case Qt::Key_Home:
        break;
    case Qt::Key_End:
        wanted = rows_.count - 1;
        break;
    default:
        return false;
    }
    makeCurrent(std::clamp(wanted, 0, rows_.count - 1));
    return true;
}

void TranscriptHistoryTable::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (currentRow_ && !event->isAutoRepeat() && (isReturn || event->matches(QKeySequence::Copy))) {
        emit copyRequested(*currentRow_);
    } else if (currentRow_ && !event->isAutoRepeat() && event->key() == Qt::Key_Delete) {
        emit deleteRequested(*currentRow_);
    } else if (event->key() == Qt::Key_Escape && swipe_.openRow()) {
        swipe_.close();
    } else if (!moveBy(*event)) {
        QWidget::keyPressEvent(event);
    }
}

void TranscriptHistoryTable::mousePressEvent(QMouseEvent* event) {
    const auto row = rowAt(event->position().toPoint());
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    if (!row) {
        swipe_.close();
        return;
    }
    press_ = event->position().toPoint();
    isSwiping_ = false;
    makeCurrent(*row);
    swipe_.begin(*row);
}

void TranscriptHistoryTable::mouseMoveEvent(QMouseEvent* event) {
    if (!press_) {
        return;
    }
    const QPoint moved = event->position().toPoint() - *press_;
    const int aside = std::abs(moved.x());
    isSwiping_ = isSwiping_ || (aside >= QApplication::startDragDistance() && aside > std::abs(moved.y()));
    if (isSwiping_) {
        swipe_.drawTo(isRightToLeft() ? moved.x() : -moved.x());
    }
}

void TranscriptHistoryTable::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !press_) {
        return;
    }
    press_.reset();
    if (std::exchange(isSwiping_, false)) {
        swipe_.end();
    } else {
        swipe_.close();
    }
}

void TranscriptHistoryTable::mouseDoubleClickEvent(QMouseEvent* event) {
    const auto row = rowAt(event->position().toPoint());
    if (row && event->button() == Qt::LeftButton) {
        emit copyRequested(*row);
    }
}

void TranscriptHistoryTable::wheelEvent(QWheelEvent* event) {
    const QPointF moved = event->pixelDelta().isNull()
                              ? QPointF(event->angleDelta()) / kNotch * kPixelsPerNotch
                              : QPointF(event->pixelDelta());
    const auto row = rowAt(event->position().toPoint());
    if (std::abs(moved.x()) > std::abs(moved.y())) {
        if (row) {
            swipe_.scroll(*row, isRightToLeft() ? moved.x() : -moved.x());
        }
        return;
    }
    const int before = bar_->value();
    bar_->setValue(before - static_cast<int>(std::lround(moved.y())));
    // At its end the list lets what it lies in move on.
    event->setAccepted(bar_->value() != before);
}

void TranscriptHistoryTable::contextMenuEvent(QContextMenuEvent* event) {
    const bool byKeyboard = event->reason() == QContextMenuEvent::Keyboard;
    const auto row = byKeyboard ? currentRow_ : rowAt(event->pos());
    if (!row) {
        return;
    }
    swipe_.close();
    if (byKeyboard) {
        scrollToRow(*row);
    }
    const QPoint middle(width() / 2, rows_.topOf(*row) + rows_.rowHeight / 2);
    emit contextMenuRequested(*row, mapToGlobal(byKeyboard ? middle : event->pos()));
}

void TranscriptHistoryTable::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    if (!currentRow_ && rows_.count > 0) {
        makeCurrent(rows_.firstVisible());
    }
    showRows();
    tellAssistivePrograms();
}

void TranscriptHistoryTable::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    showRows();
}

void TranscriptHistoryTable::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const int barWidth = overlayBar_->sizeHint().width();
    const QRect bar(width() - barWidth, kBarInset, barWidth, height() - 2 * kBarInset);
    overlayBar_->setGeometry(QStyle::visualRect(layoutDirection(), rect(), bar));
    showRows();
}

void TranscriptHistoryTable::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    paintBox(painter, rect(), theme::kRowBackground, theme::kRowBorder, theme::kRowBorderWidth,
             theme::kRowCornerRadius);
    for (int row = rows_.firstVisible() + 1; row < rows_.endVisible(); ++row) {
        const double y = rows_.topOf(row) - theme::kRowBorderWidth / 2;
        painter.drawLine(QPointF(theme::kHistoryRowSide, y), QPointF(width() - theme::kHistoryRowSide, y));
    }
    if (rows_.count > 0) {
        return;
    }
    painter.setPen(theme::kRowDetail);
    painter.setFont(theme::font(theme::kHistoryTextSize));
    painter.drawText(rect(), static_cast<int>(Qt::AlignCenter), placeholder_);
    if (hasFocus()) {
        paintFocusRing(painter, rect(), theme::kRowCornerRadius);
    }
}

} // namespace tovik
