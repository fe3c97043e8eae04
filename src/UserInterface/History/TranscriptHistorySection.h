// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Clock.h"
#include "Platform/MainQueue.h"

#include <QMenu>
#include <QPointer>
#include <QWidget>

#include <cstddef>

class QLabel;
class QPoint;

namespace tovik {

class SearchField;
class TranscriptHistoryBrowser;
class TranscriptHistoryTable;

/// The past transcripts: a field to search them, how many there are, and the list.
class TranscriptHistorySection : public QWidget {
    Q_OBJECT

public:
    /// All of them outlive the section.
    TranscriptHistorySection(const Clock& clock, MainQueue& queue, TranscriptHistoryBrowser& browser,
                             QWidget* parent = nullptr);

    /// Shows the history as it stands now.
    void reload();

    [[nodiscard]] TranscriptHistoryTable& historyTableView() { return *historyTableView_; }
    [[nodiscard]] QLabel& historyCountLabel() { return *historyCountLabel_; }
    [[nodiscard]] SearchField& historySearchField() { return *historySearchField_; }
    /// The menu of a row while it is open, else null.
    [[nodiscard]] QMenu* contextMenu() const { return contextMenu_; }

private:
    void copyRow(int row);
    void deleteRow(int row);
    void openContextMenu(int row, const QPoint& globalPlace);
    void copyHistoryEntry(std::size_t index);

    TranscriptHistoryBrowser& browser_;
    SearchField* historySearchField_;
    QLabel* historyCountLabel_;
    TranscriptHistoryTable* historyTableView_;
    QPointer<QMenu> contextMenu_;
};

} // namespace tovik
