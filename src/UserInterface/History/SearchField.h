// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QLineEdit;

namespace tovik {

class HoverFillButton;

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
    QLineEdit* lineEdit_;
    HoverFillButton* clearButton_;
};

} // namespace tovik
