// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/MakerLinks.h"

#include <algorithm>

namespace tovik {

namespace {

bool isHostCharacter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9') || character == '.' || character == '-';
}

} // namespace

MakerLinks::MakerLinks(Workspace& workspace, MainWindow& mainWindow, std::string_view webHost)
    : workspace_(workspace),
      mainWindow_(mainWindow),
      webHost_(webHost) {}

void MakerLinks::openTovikVoiceUpdates() {
    const auto updates = url("/voice#download");
    if (!updates) {
        mainWindow_.showSavedToast("Update link unavailable");
        return;
    }
    const bool opened = workspace_.openUrl(*updates);
    mainWindow_.showSavedToast(opened ? "Opening updates" : "Could not open updates");
}

void MakerLinks::openTovikAIWebsite() {
    if (const auto home = url("/")) {
        (void)workspace_.openUrl(*home);
    }
}

std::optional<std::string> MakerLinks::url(std::string_view pathAndFragment) const {
    const bool isHost = !webHost_.empty() && std::all_of(webHost_.begin(), webHost_.end(), isHostCharacter);
    return isHost ? std::optional("https://" + webHost_ + std::string(pathAndFragment)) : std::nullopt;
}

} // namespace tovik
