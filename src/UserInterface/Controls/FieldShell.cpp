// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/FieldShell.h"

#include "UserInterface/Controls/ShellPainter.h"
#include "UserInterface/Controls/Theme.h"

#include <QKeyEvent>
#include <QPainter>

namespace tovik {

FieldShell::FieldShell(QWidget* parent) : QLineEdit(parent) {
    setFrame(false);
    setFixedHeight(theme::kShellHeight);
    setFont(theme::font(theme::kSettingTextSize));
    setTrailingRoom(theme::kShellSide);
    QPalette ownPalette = palette();
    ownPalette.setColor(QPalette::Base, Qt::transparent);
    ownPalette.setColor(QPalette::PlaceholderText, theme::color(theme::kRowDetail));
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

} // namespace tovik
