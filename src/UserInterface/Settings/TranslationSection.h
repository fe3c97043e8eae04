// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/TranslationService.h"
#include "Platform/UserDefaults.h"

#include <QComboBox>
#include <QWidget>

#include <functional>
#include <optional>
#include <string>

class QCheckBox;
class QLabel;

namespace tovik {

/// The switch and the languages of the Translation section. Main thread.
class TranslationSettings {
public:
    /// Both outlive it.
    TranslationSettings(const TextTranslator& translator, UserDefaults& defaults,
                        std::function<void(const std::string&)> showSavedToast);

    /// What the switch says, which depends on whether there is a translation service.
    [[nodiscard]] std::string toggleTitle() const;
    [[nodiscard]] bool isToggleEnabled() const;
    /// What is missing, for the user; nothing while there is a translation service.
    [[nodiscard]] std::optional<std::string> explanation() const { return translator_.whyUnavailable(); }

    [[nodiscard]] bool translationEnabled() const;
    /// The languages can be chosen: there is a service, and translation is on.
    [[nodiscard]] bool areLanguagesEnabled() const;

    /// The stored identifiers, or those that count in their place.
    [[nodiscard]] std::string sourceLanguage() const;
    [[nodiscard]] std::string targetLanguage() const;

    void translationToggled(bool on);
    /// Nothing: no language is selected, and nothing happens.
    void sourceLanguageChanged(const std::optional<std::string>& identifier);
    void targetLanguageChanged(const std::optional<std::string>& identifier);

private:
    void languageChanged(const std::optional<std::string>& identifier, const char* key, const char* toast);

    const TextTranslator& translator_;
    UserDefaults& defaults_;
    const std::function<void(const std::string&)> showSavedToast_;
};

/// A pop-up button with the languages of translation.
class LanguagePopUp : public QComboBox {
    Q_OBJECT

public:
    explicit LanguagePopUp(const QString& name, QWidget* parent = nullptr);

    /// Nothing is selected for an identifier that is not among the languages; it is shown all the same.
    void select(const std::string& identifier);

    /// The name of the selected language, or the identifier that is none of them.
    [[nodiscard]] QString shownLanguage() const;

    /// The selected language; nothing when none is.
    [[nodiscard]] std::optional<std::string> selectedIdentifier() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
};

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
