// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/History/TranscriptHistoryCell.h"

#include "UserInterface/Controls/ClampedLabel.h"
#include "UserInterface/History/HighlightView.h"
#include "UserInterface/Controls/HoverFillButton.h"
#include "UserInterface/History/SwipeActionButton.h"
#include "UserInterface/Controls/Theme.h"

#include <QEvent>
#include <QGuiApplication>
#include <QLabel>
#include <QPaintEvent>
#include <QPainter>
#include <QStyle>

#include <algorithm>
#include <cmath>

namespace tovik {

namespace {

QColor ink(const Rgba& color) {
    return theme::color(color);
}

void setInk(QWidget& view, const QColor& color) {
    QPalette palette = view.palette();
    palette.setColor(QPalette::WindowText, color);
    view.setPalette(palette);
}

} // namespace

TranscriptHistoryCell::TranscriptHistoryCell(const Clock& clock, MainQueue& queue, QWidget* parent)
    : QWidget(parent),
      queue_(queue),
      content_(new QWidget(this)),
      highlight_(new HighlightView(theme::kHistoryHighlight, theme::kHistoryHighlightRadius, content_)),
      textLabel_(new ClampedLabel(theme::kHistoryTextLines, content_)),
      dateLabel_(new QLabel(content_)),
      copyButton_(new HoverFillButton(content_)),
      deleteButton_(new SwipeActionButton(QStringLiteral("Delete"), this)),
      fade_(clock, queue) {
    textLabel_->setFont(theme::font(theme::kHistoryTextSize));
    setInk(*textLabel_, ink(theme::kRowTitle));
    dateLabel_->setFont(theme::font(theme::kHistoryDateSize));
    dateLabel_->setTextFormat(Qt::PlainText);
    setInk(*dateLabel_, ink(theme::kRowDetail));

    copyButton_->setSymbol(QStringLiteral("doc.on.doc"), theme::kHistoryButtonSymbolSize);
    copyButton_->describe(QStringLiteral("Copy transcript"),
                          QStringLiteral("Copy this transcript to the clipboard"));
    copyButton_->setContentTint(ink(theme::kAccent));
    copyButton_->setFocusPolicy(Qt::NoFocus);
    connect(copyButton_, &QPushButton::clicked, this, [this] { emit copyClicked(row_); });

    deleteButton_->setAccessibleName(QStringLiteral("Delete"));
    deleteButton_->setAccessibleDescription(QStringLiteral("Delete"));
    deleteButton_->hide();
    connect(deleteButton_, &QPushButton::clicked, this, [this] { emit deleteClicked(row_); });
}

TranscriptHistoryCell::~TranscriptHistoryCell() = default;

void TranscriptHistoryCell::setContents(int row, const Contents& contents) {
    row_ = row;
    if (contents_ == contents) {
        return;
    }
    contents_ = contents;
    endFlash();
    setSwipeOffset(0);
    textLabel_->setText(contents.text);
    dateLabel_->setText(contents.date);
    setAccessibleName(contents.text);
    setAccessibleDescription(contents.date);
    placeContent();
}

void TranscriptHistoryCell::setSelected(bool selected) {
    isSelected_ = selected;
    update();
}

void TranscriptHistoryCell::setCurrent(bool current, bool hasRing) {
    isCurrent_ = current;
    highlight_->setRing(hasRing);
    // One button of the list is enough for the Tab key: the arrow keys lead to the others.
    copyButton_->setFocusPolicy(current ? Qt::TabFocus : Qt::NoFocus);
}

void TranscriptHistoryCell::flashCopiedState() {
    endFlash();
    fadeHighlight(theme::kHistoryHighlightAlpha, theme::kHistoryFlashIn, TimingCurve::easeOut);
    fadeOut_ = queue_.after(theme::kHistoryFlashShown, [this] {
        fadeHighlight(0, theme::kHistoryFlashOut, TimingCurve::easeInEaseOut);
    });
}

void TranscriptHistoryCell::fadeHighlight(double to, Seconds duration, TimingCurve curve) {
    const double from = highlight_->alpha();
    fade_.start(duration, curve,
                [this, from, to](double done) { highlight_->setAlpha(from + (to - from) * done); });
}

void TranscriptHistoryCell::endFlash() {
    fadeOut_.end();
    fade_.stop();
    highlight_->setAlpha(0);
}

void TranscriptHistoryCell::setSwipeOffset(double offset) {
    swipeOffset_ = offset;
    place();
}

void TranscriptHistoryCell::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    place();
    placeContent();
}

void TranscriptHistoryCell::changeEvent(QEvent* event) {
    if (event->type() == QEvent::LayoutDirectionChange || event->type() == QEvent::FontChange) {
        place();
        placeContent();
    }
    QWidget::changeEvent(event);
}

void TranscriptHistoryCell::place() {
    const int aside = static_cast<int>(std::lround(swipeOffset_));
    const bool fromRight = isRightToLeft();
    content_->setGeometry(fromRight ? aside : -aside, 0, width(), height());
    const QRect action(width() - aside, 0, aside, height());
    deleteButton_->setGeometry(QStyle::visualRect(layoutDirection(), rect(), action));
    deleteButton_->setVisible(aside > 0);
}

void TranscriptHistoryCell::placeContent() {
    const auto inReadingDirection = [this](const QRect& place) {
        return QStyle::visualRect(layoutDirection(), rect(), place);
    };
    highlight_->setGeometry(
        rect().adjusted(theme::kHistoryHighlightSideInset, theme::kHistoryHighlightEndInset,
                        -theme::kHistoryHighlightSideInset, -theme::kHistoryHighlightEndInset));
    const int button = theme::kHistoryButtonSize;
    const int buttonLeft = width() - theme::kHistoryRowSide - button;
    copyButton_->setGeometry(inReadingDirection({buttonLeft, (height() - button) / 2, button, button}));

    const int left = theme::kHistoryRowSide;
    const int textWidth = std::max(0, buttonLeft - theme::kHistoryTextToButton - left);
    const int textHeight = textLabel_->heightForWidth(textWidth);
    const int dateHeight = dateLabel_->fontMetrics().lineSpacing();
    const int top = (height() - textHeight - theme::kHistoryTextToDate - dateHeight) / 2;
    textLabel_->setGeometry(inReadingDirection({left, top, textWidth, textHeight}));
    dateLabel_->setGeometry(
        inReadingDirection({left, top + textHeight + theme::kHistoryTextToDate, textWidth, dateHeight}));
}

void TranscriptHistoryCell::paintEvent(QPaintEvent* /*event*/) {
    if (!isSelected_) {
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme::color(theme::kAccent.withAlpha(theme::kHistorySelectionAlpha)));
    painter.drawRoundedRect(highlight_->geometry().translated(content_->pos()),
                            theme::kHistoryHighlightRadius, theme::kHistoryHighlightRadius);
}

} // namespace tovik
