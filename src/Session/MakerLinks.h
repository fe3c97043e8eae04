// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainWindow.h"
#include "Platform/Workspace.h"

namespace tovik {

/// The ways to the maker's web site. Main thread.
class MakerLinks {
public:
    MakerLinks(Workspace& workspace, MainWindow& mainWindow);

    void openTovikVoiceUpdates();
    /// Tells the user nothing, whether it works or not.
    void openTovikAIWebsite();

private:
    Workspace& workspace_;
    MainWindow& mainWindow_;
};

} // namespace tovik
