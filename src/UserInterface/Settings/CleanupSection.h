// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/UserDefaults.h"
#include "Speech/Text/FinalTextChain.h"

#include <QWidget>

#include <functional>
#include <string>
#include <string_view>

class QCheckBox;

namespace tovik {

class FieldShell;

/// The switch and the list of the Cleanup section. Main thread.
class CleanupSettings {
public:
    /// Both outlive it.
    CleanupSettings(FillerWords& fillerWords, UserDefaults& defaults,
                    std::function<void(const std::string&)> showSavedToast);

    [[nodiscard]] bool cleanupEnabled() const { return fillerWords_.cleanupEnabled(); }
    [[nodiscard]] std::string fillerWords() { return fillerWords_.fillerWords(); }

    void cleanupToggled(bool on);
    /// Stores what was typed, the default list when that is nothing; returns the list then in effect.
    std::string fillerWordsChanged(std::string_view text);

private:
    FillerWords& fillerWords_;
    UserDefaults& defaults_;
    const std::function<void(const std::string&)> showSavedToast_;
};

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
