// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/StatusMenu.h"

namespace tovik {

namespace {

MenuItem submenuItem(const char* title, std::shared_ptr<Menu> submenu) {
    MenuItem item;
    item.title = title;
    item.submenu = std::move(submenu);
    return item;
}

MenuItem actionItem(const char* title, std::function<void()> action, const char* keyEquivalent = "") {
    MenuItem item;
    item.title = title;
    item.action = std::move(action);
    item.keyEquivalent = keyEquivalent;
    return item;
}

} // namespace

std::shared_ptr<Menu> makeStatusMenu(StatusMenuParts parts) {
    auto menu = std::make_shared<Menu>();
    menu->setItems({
        submenuItem("Input Device", std::move(parts.inputDevices)),
        submenuItem("Dictation Language", std::move(parts.languages)),
        MenuItem::separator(),
        actionItem("Paste Last Transcript", std::move(parts.pasteLastTranscript)),
        submenuItem("Transcript History", std::move(parts.transcriptHistory)),
        MenuItem::separator(),
        actionItem("Open Tovik Record", std::move(parts.openMainWindowFromMenu)),
        actionItem("Quit", std::move(parts.quitApp), "q"),
    });
    return menu;
}

} // namespace tovik
