// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Settings/CleanupSettings.h"

#include <utility>

namespace tovik {

CleanupSettings::CleanupSettings(FillerWords& fillerWords, UserDefaults& defaults,
                                 std::function<void(const std::string&)> showSavedToast)
    : fillerWords_(fillerWords),
      defaults_(defaults),
      showSavedToast_(std::move(showSavedToast)) {}

void CleanupSettings::cleanupToggled(bool on) {
    defaults_.set(FillerWords::removeKey, on);
    showSavedToast_(on ? "Cleanup on" : "Cleanup off");
}

std::string CleanupSettings::fillerWordsChanged(std::string_view text) {
    auto inEffect = fillerWords_.saveFillerWords(text);
    showSavedToast_("Filler words saved");
    return inEffect;
}

} // namespace tovik
