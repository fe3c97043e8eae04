// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/History/TranscriptHistorySection.h"

#include "Speech/History/TranscriptHistoryBrowser.h"
#include "UserInterface/History/SearchField.h"
#include "UserInterface/History/ShortDate.h"
#include "UserInterface/Controls/Theme.h"
#include "UserInterface/History/TranscriptHistoryTable.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace tovik {

namespace {

QLabel* makeNote(const QString& text) {
    auto* note = new QLabel(text);
    note->setFont(theme::font(theme::kHistoryDateSize));
    note->setTextFormat(Qt::PlainText);
    QPalette palette = note->palette();
    palette.setColor(QPalette::WindowText, theme::color(theme::kRowDetail));
    note->setPalette(palette);
    return note;
}

} // namespace

TranscriptHistorySection::TranscriptHistorySection(const Clock& clock, MainQueue& queue,
                                                   TranscriptHistoryBrowser& browser, QWidget* parent)
    : QWidget(parent),
      browser_(browser),
      historySearchField_(new SearchField(QStringLiteral("Search transcripts"),
                                          QStringLiteral("Filter transcript history by text"))),
      historyCountLabel_(makeNote({})),
      historyTableView_(new TranscriptHistoryTable(clock, queue, [this](int row) {
          const auto& entry = browser_.filteredHistoryEntries()[static_cast<std::size_t>(row)].entry;
          return TranscriptHistoryCell::Contents{QString::fromStdString(entry.text),
                                                 shortDateAndTime(entry.createdAt)};
      })) {
    const auto hint = QStringLiteral("Double-click to copy · Right-click to delete");
    historyCountLabel_->setObjectName(QStringLiteral("historyCountLabel"));
    historyTableView_->setAccessibleName(QStringLiteral("Transcript History"));
    historyTableView_->setAccessibleDescription(hint);

    auto* searchRow = new QHBoxLayout;
    searchRow->setSpacing(theme::kRowGap);
    searchRow->addWidget(historySearchField_, 1);
    searchRow->addWidget(historyCountLabel_);
    auto* stack = new QVBoxLayout(this);
    stack->setContentsMargins(0, 0, 0, 0);
    stack->setSpacing(theme::kHistorySpacing);
    stack->addLayout(searchRow);
    stack->addWidget(historyTableView_);
    stack->addWidget(makeNote(hint));

    connect(historySearchField_, &SearchField::searchChanged, this,
            [this](const QString& text) { browser_.historySearchChanged(text.toStdString()); });
    connect(historySearchField_, &SearchField::downPressed, historyTableView_,
            [this] { historyTableView_->setFocus(Qt::OtherFocusReason); });
    connect(historyTableView_, &TranscriptHistoryTable::copyRequested, this,
            &TranscriptHistorySection::copyRow);
    connect(historyTableView_, &TranscriptHistoryTable::deleteRequested, this,
            &TranscriptHistorySection::deleteRow);
    connect(historyTableView_, &TranscriptHistoryTable::contextMenuRequested, this,
            &TranscriptHistorySection::openContextMenu);
    reload();
}

void TranscriptHistorySection::reload() {
    browser_.reload();
    const auto count = QString::fromStdString(browser_.countText());
    historyTableView_->setPlaceholder(count.isEmpty() ? QStringLiteral("No transcripts yet") : QString());
    historyTableView_->reloadData(static_cast<int>(browser_.filteredHistoryEntries().size()));
    historyCountLabel_->setText(count);
}

void TranscriptHistorySection::copyRow(int row) {
    if (row >= 0 && browser_.copyRow(static_cast<std::size_t>(row))) {
        historyTableView_->flashHistoryRow(row);
    }
}

void TranscriptHistorySection::deleteRow(int row) {
    if (row >= 0) {
        browser_.deleteRow(static_cast<std::size_t>(row));
    }
}

void TranscriptHistorySection::openContextMenu(int row, const QPoint& globalPlace) {
    const auto& rows = browser_.filteredHistoryEntries();
    if (row < 0 || static_cast<std::size_t>(row) >= rows.size()) {
        return;
    }
    delete contextMenu_;
    contextMenu_ = new QMenu(this);
    contextMenu_->setAttribute(Qt::WA_DeleteOnClose);
    // A transcript that arrives while the menu is open moves the others: each item means the one it was
    // opened on.
    connect(contextMenu_->addAction(QStringLiteral("Copy")), &QAction::triggered, this,
            [this, shown = rows[static_cast<std::size_t>(row)]] {
                if (const auto index = browser_.currentIndexOf(shown)) {
                    copyHistoryEntry(*index);
                }
            });
    connect(contextMenu_->addAction(QStringLiteral("Delete")), &QAction::triggered, this,
            [this, shown = rows[static_cast<std::size_t>(row)]] {
                if (const auto index = browser_.currentIndexOf(shown)) {
                    browser_.deleteHistoryEntry(*index);
                }
            });
    contextMenu_->popup(globalPlace);
}

void TranscriptHistorySection::copyHistoryEntry(std::size_t index) {
    browser_.copyHistoryEntry(index);
    if (const auto row = browser_.rowOf(index)) {
        historyTableView_->flashHistoryRow(static_cast<int>(*row));
    }
}

} // namespace tovik
