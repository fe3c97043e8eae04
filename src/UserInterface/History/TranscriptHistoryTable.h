// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "UserInterface/History/HistoryRows.h"
#include "UserInterface/History/TranscriptHistoryCell.h"

#include <QPoint>
#include <QWidget>

#include <functional>
#include <optional>
#include <vector>

class QScrollBar;

namespace tovik {

class OverlayScrollBar;

/// The scrolling list of past transcripts. It makes as many cells as fit its height and uses them again as it
/// scrolls. A row is copied by double-click, Return or its button, deleted by the Delete key or by swiping it
/// aside, and has a context menu; the list only reports that. Rows are counted from 0.
///
/// Not a QListView with a delegate: that paints pictures of rows. To assistive programs its rows can be
/// toggled and no more, and a button set into one (setIndexWidget) is not there at all. Nor a QScrollArea
/// with a view for each row: each new transcript would lay out a hundred of them. Here a row in sight is a
/// live view: its copy button has a tool tip, a name, a look for the pointer over it and a place in the order
/// of the Tab key; the button beside a row drawn aside is pressed like any other; and pressing the row itself
/// copies it.
class TranscriptHistoryTable : public QWidget {
    Q_OBJECT

public:
    using ContentsOfRow = std::function<TranscriptHistoryCell::Contents(int row)>;

    TranscriptHistoryTable(const Clock& clock, MainQueue& queue, ContentsOfRow contentsOfRow,
                           QWidget* parent = nullptr);
    ~TranscriptHistoryTable() override;

    /// Shows the rows anew. The keyboard stays at its place in the list.
    void reloadData(int rowCount);
    [[nodiscard]] int rowCount() const { return rows_.count; }

    /// What shows where there are no rows.
    void setPlaceholder(const QString& text);

    /// The row where the keyboard is; nothing as long as none was touched.
    [[nodiscard]] std::optional<int> currentRow() const { return currentRow_; }
    [[nodiscard]] std::optional<int> selectedRow() const { return selectedRow_; }
    void deselectAll();
    /// Whether the selected row is shown as such. It is at first.
    void setSelectionHighlight(bool isShown);

    /// The cell that shows the row; null while it is scrolled out of sight.
    [[nodiscard]] TranscriptHistoryCell* cellAt(int row) const;
    /// The cells in sight, from top to bottom.
    [[nodiscard]] std::vector<TranscriptHistoryCell*> visibleCells() const;
    [[nodiscard]] std::optional<int> rowAt(const QPoint& place) const;

    /// Flashes the row as copied; one that is not in sight is left alone.
    void flashHistoryRow(int row);

    void scrollToRow(int row);
    [[nodiscard]] QScrollBar& scrollBar() { return *bar_; }

    [[nodiscard]] QSize sizeHint() const override;

signals:
    void copyRequested(int row);
    void deleteRequested(int row);
    void contextMenuRequested(int row, const QPoint& globalPlace);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void showRows();
    void makeCurrent(int row);
    void select(std::optional<int> row);
    [[nodiscard]] bool moveBy(QKeyEvent& event);
    void tellAssistivePrograms() const;

    ContentsOfRow contentsOfRow_;
    ListRows rows_;
    std::vector<TranscriptHistoryCell*> cells_;
    QScrollBar* bar_;
    OverlayScrollBar* overlayBar_;
    QString placeholder_;
    std::optional<int> currentRow_;
    std::optional<int> selectedRow_;
    bool showsSelection_ = true;
    RowSwipe swipe_;
    /// Where the pointer was pressed on a row and has not been let go.
    std::optional<QPoint> press_;
    bool isSwiping_ = false;
};

} // namespace tovik
