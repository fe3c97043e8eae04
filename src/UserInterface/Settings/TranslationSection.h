// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UserInterface/Settings/TranslationSettings.h"

#include <QWidget>

class QCheckBox;
class QLabel;

namespace tovik {

class LanguagePopUp;

/// Whether transcripts are translated, from which language and into which.
class TranslationSection : public QWidget {
    Q_OBJECT

public:
    explicit TranslationSection(TranslationSettings settings, QWidget* parent = nullptr);

    /// Shows the settings as they are stored now, and whether there is a translation service.
    void refresh();

    [[nodiscard]] QCheckBox& translationToggleButton() { return *toggle_; }
    [[nodiscard]] LanguagePopUp& sourceLanguagePopup() { return *source_; }
    [[nodiscard]] LanguagePopUp& targetLanguagePopup() { return *target_; }
    [[nodiscard]] QLabel& explanationLabel() { return *explanation_; }

signals:
    /// An explanation came or went.
    void heightChanged();

protected:
    void showEvent(QShowEvent* event) override;

private:
    [[nodiscard]] QWidget* makeRow(const QString& label, LanguagePopUp& popUp);

    TranslationSettings settings_;
    QCheckBox* toggle_;
    LanguagePopUp* source_;
    LanguagePopUp* target_;
    QLabel* explanation_;
};

} // namespace tovik
