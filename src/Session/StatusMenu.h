// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Menu.h"

#include <functional>
#include <memory>

namespace tovik {

/// What the rows of the status menu lead to.
struct StatusMenuParts {
    std::shared_ptr<Menu> inputDevices;
    std::shared_ptr<Menu> languages;
    std::shared_ptr<Menu> transcriptHistory;
    std::function<void()> pasteLastTranscript;
    std::function<void()> openMainWindowFromMenu;
    std::function<void()> quitApp;
};

/// The menu of the status item.
[[nodiscard]] std::shared_ptr<Menu> makeStatusMenu(StatusMenuParts parts);

} // namespace tovik
