// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UserInterface/Settings/CleanupSettings.h"

#include <QWidget>

class QCheckBox;

namespace tovik {

class FieldShell;

/// Whether filler words are removed, and which.
class CleanupSection : public QWidget {
    Q_OBJECT

public:
    explicit CleanupSection(CleanupSettings settings, QWidget* parent = nullptr);

    /// Shows the settings as they are stored now; a list that is being typed stays.
    void refresh();

    /// Stores what is being typed.
    void endEditing();

    [[nodiscard]] QCheckBox& cleanupToggleButton() { return *toggle_; }
    [[nodiscard]] FieldShell& fillerWordsField() { return *field_; }

private:
    void fillerWordsChanged(const QString& text);

    CleanupSettings settings_;
    QCheckBox* toggle_;
    FieldShell* field_;
};

} // namespace tovik
