// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/LanguageMenu.h"

#include "Audio/DictationLocales.h"

namespace tovik {

LanguageMenu::LanguageMenu(UserDefaults& defaults, SystemLog& log, MainWindow& mainWindow,
                           std::function<void()> restartRecording)
    : defaults_(defaults),
      log_(log),
      mainWindow_(mainWindow),
      restartRecording_(std::move(restartRecording)) {
    const auto chosen = defaults_.string(kSelectedDictationLocaleKey);
    std::vector<MenuItem> items{makeItem(std::string(kAutoDetectTitle), std::nullopt, chosen),
                                MenuItem::separator()};
    for (const auto& [identifier, title] : localeDisplay()) {
        items.push_back(makeItem(title, identifier, chosen));
    }
    menu_->setItems(std::move(items));
}

MenuItem LanguageMenu::makeItem(const std::string& title, const std::optional<std::string>& localeIdentifier,
                                const std::optional<std::string>& chosen) {
    MenuItem item;
    item.title = title;
    item.representedText = localeIdentifier.value_or("");
    item.isChecked = localeIdentifier == chosen;
    item.action = [this, localeIdentifier] { languageMenuSelected(localeIdentifier); };
    return item;
}

void LanguageMenu::languageMenuSelected(std::optional<std::string> localeIdentifier) {
    if (localeIdentifier) {
        defaults_.set(kSelectedDictationLocaleKey, *localeIdentifier);
    } else {
        defaults_.remove(kSelectedDictationLocaleKey);
    }
    showStoredChoice();
    restartRecording_();
    log_.printLine("[TovikVoice] Dictation language changed to: " + localeIdentifier.value_or("Auto-detect"));
    mainWindow_.showSavedToast("Dictation language saved");
}

void LanguageMenu::showStoredChoice() {
    const auto chosen = defaults_.string(kSelectedDictationLocaleKey);
    auto items = menu_->items();
    bool changed = false;
    for (auto& item : items) {
        // Only the first item, which detects the language, stands for no identifier.
        const bool isChecked =
            !item.isSeparator && (item.representedText.empty() ? !chosen : item.representedText == chosen);
        changed = changed || isChecked != item.isChecked;
        item.isChecked = isChecked;
    }
    if (changed) {
        menu_->setItems(std::move(items));
    }
}

} // namespace tovik
