// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainWindow.h"
#include "Platform/Menu.h"
#include "Platform/SystemLog.h"
#include "Platform/UserDefaults.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tovik {

/// The "Dictation Language" submenu. Main thread.
class LanguageMenu {
public:
    /// restartRecording: ends the running recording, if there is one, and begins another.
    LanguageMenu(UserDefaults& defaults, SystemLog& log, MainWindow& mainWindow,
                 std::function<void()> restartRecording);

    [[nodiscard]] const std::shared_ptr<Menu>& menu() const { return menu_; }

    /// The user chose a language; without an identifier the language is detected. Takes a copy, since the
    /// item that holds the identifier is replaced meanwhile.
    void languageMenuSelected(std::optional<std::string> localeIdentifier);

    /// Checks the language that is stored now.
    void showStoredChoice();

private:
    [[nodiscard]] MenuItem makeItem(const std::string& title,
                                    const std::optional<std::string>& localeIdentifier,
                                    const std::optional<std::string>& chosen);

    UserDefaults& defaults_;
    SystemLog& log_;
    MainWindow& mainWindow_;
    std::function<void()> restartRecording_;
    std::shared_ptr<Menu> menu_ = std::make_shared<Menu>();
};

} // namespace tovik
