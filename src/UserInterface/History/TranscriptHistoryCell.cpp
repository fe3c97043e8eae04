// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/History/TranscriptHistoryCell.h"

#include "UserInterface/Controls/Buttons.h"
#include "UserInterface/Controls/Fields.h"
#include "UserInterface/Controls/Painting.h"
#include "UserInterface/Controls/Theme.h"

#include <QEvent>
#include <QGuiApplication>
#include <QLabel>
#include <QPaintEvent>
#include <QPainter>
#include <QStyle>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace tovik {

namespace {

/// More than this of a text never fits a line.
constexpr qsizetype kMostCharactersInALine = 400;
/// How dark the button beside a row drawn aside is, in parts of a hundred.
constexpr int kPressedDarkening = 118;
constexpr int kHoverDarkening = 108;
constexpr int kRest = 100;

QString inOneLine(QString text) {
    for (const QChar separator : {QChar(QChar::LineSeparator), QChar(QChar::ParagraphSeparator)}) {
        text.replace(separator, QLatin1Char(' '));
    }
    return text;
}

} // namespace

ClampedLabel::ClampedLabel(int mostLines, QWidget* parent) : QLabel(parent), mostLines_(mostLines) {
    setTextFormat(Qt::PlainText);
}

QStringList ClampedLabel::shownLines(int width) const {
    const QString whole = text();
    QString begin = whole.left(kMostCharactersInALine * mostLines_);
    begin.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    begin.replace(QLatin1Char('\n'), QChar(QChar::LineSeparator));
    const bool isCut = begin.size() < whole.size();

    QTextLayout layout(begin, font());
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    QStringList lines;
    layout.beginLayout();
    while (lines.size() < mostLines_) {
        QTextLine line = layout.createLine();
        if (!line.isValid()) {
            break;
        }
        line.setLineWidth(width);
        const int end = line.textStart() + line.textLength();
        const bool goesOn = end < begin.size() || isCut;
        if (lines.size() + 1 == mostLines_ && goesOn) {
            const QString rest = inOneLine(begin.mid(line.textStart(), kMostCharactersInALine));
            // The rest may still fit the line when only what was cut away is missing.
            lines.append(fontMetrics().elidedText(rest + QChar(0x2026), Qt::ElideRight, width));
        } else {
            lines.append(inOneLine(begin.mid(line.textStart(), line.textLength())).trimmed());
        }
    }
    layout.endLayout();
    return lines;
}

int ClampedLabel::heightForWidth(int width) const {
    const auto lines = std::max<qsizetype>(1, shownLines(width).size());
    return static_cast<int>(lines) * fontMetrics().lineSpacing();
}

QSize ClampedLabel::sizeHint() const {
    return {0, mostLines_ * fontMetrics().lineSpacing()};
}

QSize ClampedLabel::minimumSizeHint() const {
    return {0, fontMetrics().lineSpacing()};
}

void ClampedLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    const int lineHeight = fontMetrics().lineSpacing();
    int top = 0;
    for (const QString& line : shownLines(width())) {
        painter.drawText(QRect(0, top, width(), lineHeight),
                         static_cast<int>(Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine), line);
        top += lineHeight;
    }
}

HighlightView::HighlightView(const QColor& color, double cornerRadius, QWidget* parent)
    : QWidget(parent),
      color_(color),
      cornerRadius_(cornerRadius) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void HighlightView::setAlpha(double alpha) {
    alpha_ = alpha;
    update();
}

void HighlightView::setRing(bool hasRing) {
    hasRing_ = hasRing;
    update();
}

void HighlightView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (alpha_ > 0) {
        fillRounded(painter, rect(), theme::withAlpha(color_, color_.alphaF() * alpha_), cornerRadius_);
    }
    if (hasRing_) {
        paintFocusRing(painter, rect(), cornerRadius_ - theme::kFocusRingWidth / 2);
    }
}

SwipeActionButton::SwipeActionButton(const QString& title, QWidget* parent) : BorderlessButton(parent) {
    setText(title);
    setFont(theme::font(theme::kHistoryTextSize, FontWeight::semibold));
    setContentTint(theme::kHistoryDeleteText);
    // It is there for the pointer; the keyboard has a key for it.
    setFocusPolicy(Qt::NoFocus);
}

void SwipeActionButton::paintGround(QPainter& painter) {
    const int darkening = isDown() ? kPressedDarkening : isHovered() ? kHoverDarkening : kRest;
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme::kHistoryDeleteGround.darker(darkening));
    painter.drawRect(rect());
}

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
    setInk(*textLabel_, theme::kRowTitle);
    dateLabel_->setFont(theme::font(theme::kHistoryDateSize));
    dateLabel_->setTextFormat(Qt::PlainText);
    setInk(*dateLabel_, theme::kRowDetail);

    copyButton_->setSymbol(QStringLiteral("doc.on.doc"), theme::kHistoryButtonSymbolSize);
    copyButton_->describe(QStringLiteral("Copy transcript"),
                          QStringLiteral("Copy this transcript to the clipboard"));
    copyButton_->setContentTint(theme::kAccent);
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
    fadeHighlight(theme::kHistoryHighlightAlpha, theme::kHistoryFlashIn, curve::easeOut);
    fadeOut_ = queue_.after(theme::kHistoryFlashShown,
                            [this] { fadeHighlight(0, theme::kHistoryFlashOut, curve::easeInEaseOut); });
}

void TranscriptHistoryCell::fadeHighlight(double to, Seconds duration, const QEasingCurve& curve) {
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
    fillRounded(painter, highlight_->geometry().translated(content_->pos()),
                theme::withAlpha(theme::kAccent, theme::kHistorySelectionAlpha),
                theme::kHistoryHighlightRadius);
}

} // namespace tovik
