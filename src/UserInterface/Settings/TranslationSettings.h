// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/TextTranslator.h"
#include "Platform/UserDefaults.h"

#include <functional>
#include <optional>
#include <string>

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

} // namespace tovik
