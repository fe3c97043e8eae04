// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/History/TranscriptHistorySection.h"

#include "Speech/History/TranscriptHistoryBrowser.h"
#include "UserInterface/Controls/Buttons.h"
#include "UserInterface/Controls/Fields.h"
#include "UserInterface/Controls/Painting.h"
#include "UserInterface/Controls/Theme.h"
#include "UserInterface/History/TranscriptHistoryTable.h"

#include <QDateTime>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPaintEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace tovik {

namespace {

constexpr int kSearchSide = 8;
constexpr int kSearchGap = 5;
constexpr int kSearchSymbolSize = 14;
constexpr int kClearSize = 18;
constexpr double kClearSymbolSize = 10;

QLabel* makeNote(const QString& text) {
    return makePlainLabel(text, theme::font(theme::kHistoryDateSize), theme::kRowDetail);
}

/// Day and time in the short style of the user's locale and in the user's time zone.
QString shortDateAndTime(Date date) {
    using std::chrono::duration_cast;
    using std::chrono::milliseconds;
    const auto since1970 = duration_cast<milliseconds>(date.time_since_epoch());
    return QLocale().toString(QDateTime::fromMSecsSinceEpoch(since1970.count()), QLocale::ShortFormat);
}

} // namespace

SearchField::SearchField(const QString& placeholder, const QString& help, QWidget* parent)
    : QWidget(parent),
      lineEdit_(new QLineEdit),
      clearButton_(new HoverFillButton) {
    setFixedHeight(theme::kFieldHeight);
    prepareLineEdit(placeholder, help);
    prepareClearButton();

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(kSearchSide, 0, kSearchSide, 0);
    row->setSpacing(kSearchGap);
    row->addWidget(new SymbolView(QStringLiteral("magnifyingglass"), {kSearchSymbolSize, kSearchSymbolSize},
                                  theme::kRowDetail));
    row->addWidget(lineEdit_, 1);
    row->addWidget(clearButton_);
}

void SearchField::prepareLineEdit(const QString& placeholder, const QString& help) {
    lineEdit_->setFrame(false);
    lineEdit_->setFont(theme::font(theme::kFieldTextSize));
    lineEdit_->setPlaceholderText(placeholder);
    lineEdit_->setAccessibleName(placeholder);
    lineEdit_->setAccessibleDescription(help);
    lineEdit_->setToolTip(help);
    QPalette palette = lineEdit_->palette();
    palette.setColor(QPalette::Base, theme::kFieldBackground);
    palette.setColor(QPalette::Text, theme::kRowTitle);
    palette.setColor(QPalette::PlaceholderText, theme::kRowDetail);
    lineEdit_->setPalette(palette);
    lineEdit_->installEventFilter(this);
    connect(lineEdit_, &QLineEdit::textChanged, this, [this](const QString& text) {
        clearButton_->setVisible(!text.isEmpty());
        emit searchChanged(text);
    });
    connect(lineEdit_, &QLineEdit::returnPressed, this, [this] { emit searchChanged(lineEdit_->text()); });
}

void SearchField::prepareClearButton() {
    clearButton_->setSymbol(QStringLiteral("xmark"), kClearSymbolSize);
    clearButton_->setFixedSize(kClearSize, kClearSize);
    clearButton_->setContentTint(theme::kRowDetail);
    clearButton_->describe(QStringLiteral("Clear search"), QStringLiteral("Clear search"));
    // Escape does the same from the keyboard.
    clearButton_->setFocusPolicy(Qt::NoFocus);
    clearButton_->hide();
    connect(clearButton_, &QPushButton::clicked, lineEdit_, &QLineEdit::clear);
}

bool SearchField::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
        update();
    } else if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Escape && !lineEdit_->text().isEmpty()) {
            lineEdit_->clear();
            return true;
        }
        if (key->key() == Qt::Key_Down) {
            emit downPressed();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void SearchField::paintEvent(QPaintEvent* /*event*/) {
    const bool hasRing = lineEdit_->hasFocus();
    QPainter painter(this);
    paintBox(painter, rect(), theme::kFieldBackground, hasRing ? theme::kAccent : theme::kFieldBorder,
             hasRing ? theme::kFocusRingWidth : theme::kRowBorderWidth, theme::kFieldCornerRadius);
}

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
    auto* stack = makeTightLayout<QVBoxLayout>(this, theme::kHistorySpacing);
    stack->addLayout(searchRow);
    stack->addWidget(historyTableView_);
    stack->addWidget(makeNote(hint));
    connectViews();
    reload();
}

void TranscriptHistorySection::connectViews() {
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
