// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/Fields.h"

#include "UserInterface/Controls/Painting.h"
#include "UserInterface/Controls/Theme.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QStyle>

#include <algorithm>

namespace tovik {

void setInk(QWidget& view, const QColor& ink) {
    QPalette palette = view.palette();
    palette.setColor(QPalette::WindowText, ink);
    view.setPalette(palette);
}

QLabel* makePlainLabel(const QString& text, const QFont& font, const QColor& ink) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setFont(font);
    setInk(*label, ink);
    return label;
}

QLabel* makeSettingLabel(const QString& text, double size, double alpha) {
    const QColor ink = theme::labelColor(QGuiApplication::palette(), theme::kCardBackground);
    return makePlainLabel(text, theme::font(size), theme::withAlpha(ink, alpha));
}

QLabel* makeReadableLabel(const QString& text, double size, double wantedAlpha, FontWeight weight) {
    return makePlainLabel(
        text, theme::font(size, weight),
        theme::readableLabelColor(QGuiApplication::palette(), theme::kCardBackground, wantedAlpha));
}

FieldShell::FieldShell(QWidget* parent) : QLineEdit(parent) {
    setFrame(false);
    setFixedHeight(theme::kShellHeight);
    setFont(theme::font(theme::kSettingTextSize));
    setTrailingRoom(theme::kShellSide);
    QPalette ownPalette = palette();
    ownPalette.setColor(QPalette::Base, Qt::transparent);
    ownPalette.setColor(QPalette::PlaceholderText, theme::kRowDetail);
    setPalette(ownPalette);
}

void FieldShell::describe(const QString& name, const QString& help) {
    setAccessibleName(name);
    setAccessibleDescription(help);
    setToolTip(help);
}

void FieldShell::setTrailingRoom(int room) {
    // Qt adds a pixel or two of its own before the text.
    constexpr int kOwnMargin = 2;
    const int before = theme::kShellSide - kOwnMargin;
    const int after = room - kOwnMargin;
    const bool fromRight = isRightToLeft();
    setTextMargins(fromRight ? after : before, theme::kShellEnd, fromRight ? before : after,
                   theme::kShellEnd);
}

void FieldShell::setStoredText(const QString& text) {
    const bool keepsTyping = isBeingEdited();
    storedText_ = text;
    if (keepsTyping || text == this->text()) {
        return;
    }
    setText(text);
    if (!hasFocus()) {
        setCursorPosition(0);
    }
}

void FieldShell::endEditing() {
    if (isBeingEdited()) {
        handOver();
    }
}

void FieldShell::discardEditing() {
    if (isBeingEdited()) {
        setText(storedText_);
    }
    setModified(false);
}

void FieldShell::handOver() {
    // The listener says what is stored now; from here on the text counts as stored.
    setModified(false);
    emit editingEnded(text());
}

void FieldShell::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        handOver();
        event->accept();
        return;
    }
    if (event->key() == Qt::Key_Escape && isBeingEdited()) {
        discardEditing();
        selectAll();
        event->accept();
        return;
    }
    QLineEdit::keyPressEvent(event);
}

void FieldShell::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    // The field's own menu takes the keyboard for a moment.
    if (event->reason() != Qt::PopupFocusReason) {
        endEditing();
    }
    if (!hasFocus()) {
        // A long text shows its beginning.
        const bool wasModified = isModified();
        setCursorPosition(0);
        setModified(wasModified);
    }
}

void FieldShell::hideEvent(QHideEvent* event) {
    endEditing();
    QLineEdit::hideEvent(event);
}

void FieldShell::paintEvent(QPaintEvent* event) {
    {
        QPainter painter(this);
        paintShell(painter, rect(), hasFocus());
    }
    QLineEdit::paintEvent(event);
}

namespace {

/// Space for the ring around the box.
constexpr int kRingRoom = 2;
constexpr int kTextBegin = kRingRoom + theme::kCheckBoxSize + theme::kCheckBoxToText;
constexpr int kHeight = 20;

} // namespace

SettingCheckBox::SettingCheckBox(QWidget* parent) : QCheckBox(parent) {
    setFont(theme::font(theme::kSettingTextSize));
    setCursor(Qt::PointingHandCursor);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize SettingCheckBox::sizeHint() const {
    return {kTextBegin + fontMetrics().horizontalAdvance(text()) + kRingRoom,
            std::max(kHeight, fontMetrics().height())};
}

bool SettingCheckBox::hitButton(const QPoint& position) const {
    return rect().contains(position);
}

void SettingCheckBox::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRect boxPlace(kRingRoom, (height() - theme::kCheckBoxSize) / 2, theme::kCheckBoxSize,
                         theme::kCheckBoxSize);
    painter.setOpacity(isEnabled() ? 1 : theme::kSettingDisabledAlpha);
    paintBox(painter, QStyle::visualRect(layoutDirection(), rect(), boxPlace));

    painter.setOpacity(1);
    const QColor ink = theme::labelColor(QGuiApplication::palette(), theme::kCardBackground);
    painter.setPen(theme::withAlpha(ink, isEnabled() ? theme::kSettingTextAlpha : theme::kSettingNoteAlpha));
    painter.setFont(font());
    const QRect textPlace(kTextBegin, 0, width() - kTextBegin, height());
    painter.drawText(QStyle::visualRect(layoutDirection(), rect(), textPlace),
                     static_cast<int>(Qt::AlignVCenter | Qt::AlignLeading), text());
}

void SettingCheckBox::paintBox(QPainter& painter, const QRectF& box) const {
    const QColor accent = theme::kAccent;
    if (hasFocus()) {
        constexpr double kOut = theme::kFocusRingWidth / 2;
        painter.setPen(QPen(accent, theme::kFocusRingWidth));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(box.adjusted(-kOut, -kOut, kOut, kOut), theme::kCheckBoxRadius + kOut,
                                theme::kCheckBoxRadius + kOut);
    }
    painter.setPen(isChecked() ? QPen(Qt::NoPen) : QPen(theme::kSeparator, 1));
    painter.setBrush(isChecked() ? accent : theme::kShellBackground);
    const double inset = isChecked() ? 0 : 0.5;
    painter.drawRoundedRect(box.adjusted(inset, inset, -inset, -inset), theme::kCheckBoxRadius,
                            theme::kCheckBoxRadius);
    if (isChecked()) {
        QPainterPath mark(QPointF(box.left() + 3.4, box.center().y() + 0.3));
        mark.lineTo(box.left() + 5.9, box.bottom() - 3.9);
        mark.lineTo(box.right() - 3.3, box.top() + 4.1);
        painter.setPen(QPen(Qt::white, 1.7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(mark);
    }
}

} // namespace tovik
