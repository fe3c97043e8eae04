// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/UserInterface.h"

#include <QCheckBox>
#include <QLineEdit>

class QColor;
class QFont;
class QLabel;
class QPainter;

namespace tovik {

/// Lays out what is in a view, without room around it.
template <typename Layout>
[[nodiscard]] Layout* makeTightLayout(QWidget* view, int spacing) {
    auto* layout = new Layout(view);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    return layout;
}

/// Draws the texts of a view in this colour.
void setInk(QWidget& view, const QColor& ink);

/// A line of text that is shown as it is, whatever it holds.
[[nodiscard]] QLabel* makePlainLabel(const QString& text, const QFont& font, const QColor& ink);

/// A line of plain text on a card, in the label colour at exactly this strength.
[[nodiscard]] QLabel* makeSettingLabel(const QString& text, double size, double alpha);

/// The same, but stronger where it could not be read otherwise.
[[nodiscard]] QLabel* makeReadableLabel(const QString& text, double size, double wantedAlpha,
                                        FontWeight weight = FontWeight::regular);

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
