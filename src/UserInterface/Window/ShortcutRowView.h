// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QLabel;

namespace tovik {

class SymbolView;

/// A line of the header that names a shortcut: a symbol, what it does, and the keys.
class ShortcutRowView : public QWidget {
    Q_OBJECT

public:
    ShortcutRowView(const QString& symbolName, const QString& label, const QString& keyCap,
                    QWidget* parent = nullptr);

protected:
    void changeEvent(QEvent* event) override;

private:
    void applyColors();

    SymbolView* symbol_;
    QLabel* label_;
    QLabel* keyCap_;
};

} // namespace tovik
