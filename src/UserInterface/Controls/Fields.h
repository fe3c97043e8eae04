// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QCheckBox>
#include <QLineEdit>

class QPainter;

namespace tovik {

/// A line of text that stands for a stored one. What the user types is handed over when editing ends: with
/// the Return key, when the keyboard goes elsewhere, and when the field goes out of sight; the Escape key
/// takes it back. Nothing is handed over when nothing was typed, except by Return.
class FieldShell : public QLineEdit {
    Q_OBJECT

public:
    explicit FieldShell(QWidget* parent = nullptr);

    /// What assistive programs call the field, and what it is for.
    void describe(const QString& name, const QString& help);

    /// Keeps the end of the field free for a control that lies over it.
    void setTrailingRoom(int room);

    /// The text as it is stored. Shown at once, unless the user is typing another.
    void setStoredText(const QString& text);

    /// The user has typed something that was not handed over yet.
    [[nodiscard]] bool isBeingEdited() const { return isModified() && text() != storedText_; }

    /// Hands over what was typed, if anything.
    void endEditing();
    /// Takes back what was typed, if anything.
    void discardEditing();

signals:
    void editingEnded(const QString& text);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void handOver();

    QString storedText_;
};

/// A check box with its title, drawn in the program's own colours.
class SettingCheckBox : public QCheckBox {
    Q_OBJECT

public:
    explicit SettingCheckBox(QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    [[nodiscard]] bool hitButton(const QPoint& position) const override;
    void paintEvent(QPaintEvent* event) override;

private:
    void paintBox(QPainter& painter, const QRectF& box) const;
};

} // namespace tovik
