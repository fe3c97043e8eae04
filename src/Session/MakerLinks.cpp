// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/MakerLinks.h"

namespace tovik {

MakerLinks::MakerLinks(Workspace& workspace, MainWindow& mainWindow)
    : workspace_(workspace),
      mainWindow_(mainWindow) {}

void MakerLinks::openTovikVoiceUpdates() {
    const bool opened = workspace_.openUrl("https://tovik.example/voice#download");
    mainWindow_.showSavedToast(opened ? "Opening updates" : "Could not open updates");
}

void MakerLinks::openTovikAIWebsite() {
    (void)workspace_.openUrl("https://tovik.example/");
}

} // namespace tovik
