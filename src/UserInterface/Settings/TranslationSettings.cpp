// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Settings/TranslationSettings.h"

#include "Speech/Translation/TranslationLanguage.h"

#include <utility>

namespace tovik {

TranslationSettings::TranslationSettings(const TextTranslator& translator, UserDefaults& defaults,
                                         std::function<void(const std::string&)> showSavedToast)
    : translator_(translator),
      defaults_(defaults),
      showSavedToast_(std::move(showSavedToast)) {}

std::string TranslationSettings::toggleTitle() const {
    return isToggleEnabled() ? "Translate after dictation" : "Translate after dictation (requires macOS 15+)";
}

bool TranslationSettings::isToggleEnabled() const {
    return !translator_.whyUnavailable();
}

bool TranslationSettings::translationEnabled() const {
    return defaults_.boolean(kTranslationEnabledKey).value_or(false);
}

bool TranslationSettings::areLanguagesEnabled() const {
    return isToggleEnabled() && translationEnabled();
}

std::string TranslationSettings::sourceLanguage() const {
    return defaults_.string(kTranslationSourceLanguageKey).value_or(kDefaultSourceLanguage);
}

std::string TranslationSettings::targetLanguage() const {
    return defaults_.string(kTranslationTargetLanguageKey).value_or(kDefaultTargetLanguage);
}

void TranslationSettings::translationToggled(bool on) {
    defaults_.set(kTranslationEnabledKey, on);
    showSavedToast_(on ? "Translation on" : "Translation off");
}

void TranslationSettings::sourceLanguageChanged(const std::optional<std::string>& identifier) {
    languageChanged(identifier, kTranslationSourceLanguageKey, "Source language saved");
}

void TranslationSettings::targetLanguageChanged(const std::optional<std::string>& identifier) {
    languageChanged(identifier, kTranslationTargetLanguageKey, "Target language saved");
}

void TranslationSettings::languageChanged(const std::optional<std::string>& identifier, const char* key,
                                          const char* toast) {
    if (!identifier) {
        return;
    }
    defaults_.set(key, *identifier);
    showSavedToast_(toast);
}

} // namespace tovik
