// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"

#include <QMenu>
#include <QPointer>
#include <QString>
#include <QWidget>

#include <cstddef>

class QLabel;
class QLineEdit;
class QPoint;

namespace tovik {

class HoverFillButton;
class TranscriptHistoryBrowser;
class TranscriptHistoryTable;

/// A field to search with: a magnifying glass, what is typed, and a button that clears it, as does Escape.
class SearchField : public QWidget {
    Q_OBJECT

public:
    SearchField(const QString& placeholder, const QString& help, QWidget* parent = nullptr);

    [[nodiscard]] QLineEdit& lineEdit() { return *lineEdit_; }
    [[nodiscard]] HoverFillButton& clearButton() { return *clearButton_; }

signals:
    /// With every edit, and with Return.
    void searchChanged(const QString& text);
    /// The user wants to go on to what was found.
    void downPressed();

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void prepareLineEdit(const QString& placeholder, const QString& help);
    void prepareClearButton();

    QLineEdit* lineEdit_;
    HoverFillButton* clearButton_;
};

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
    void connectViews();
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
