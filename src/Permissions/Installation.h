// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Permissions/InstallLocations.h"
#include "Platform/Alert.h"
#include "Platform/Authorization.h"
#include "Platform/Files.h"
#include "Platform/Lifetime.h"
#include "Platform/MainQueue.h"
#include "Platform/MainWindow.h"
#include "Platform/ProcessLauncher.h"
#include "Platform/Workspace.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tovik {

/// Leads a copy of the program that runs from a download folder or a stick to its fixed place. Main thread.
class Installation {
public:
    /// What it works with; all of it outlives the Installation.
    struct Collaborators {
        const Authorization& authorization;
        const Files& files;
        Workspace& workspace;
        ProcessLauncher& processLauncher;
        Alert& alert;
        MainQueue& mainQueue;
        MainWindow& mainWindow;
        /// Asks the program to end.
        std::function<void()> terminate;
    };

    Installation(const Collaborators& collaborators, InstallLocations locations);
    ~Installation();
    Installation(const Installation&) = delete;
    Installation& operator=(const Installation&) = delete;

    /// Opens the volume that the program runs from, else the newest installer at hand, else the place to get
    /// one. False when there is none of these; true says only that the desktop was asked.
    bool openTovikRecordInstaller();

    /// Explains what is to be done and waits for the user's choice.
    void showAccessibilityInstallGuidance();

    /// Ends this copy and starts the installed one a moment later, or when this object goes, whichever comes
    /// first; without one, leads to the installer instead.
    void quitAndReopenInstalledApp();

private:
    [[nodiscard]] std::optional<std::string> folderOfMountedVolume() const;
    [[nodiscard]] std::optional<std::string> newestInstaller() const;
    [[nodiscard]] bool isInstaller(const std::string& path) const;
    void relaunchIfPending();

    const Collaborators with_;
    const InstallLocations locations_;
    bool relaunchPending_ = false;
    Lifetime lifetime_;
};

} // namespace tovik
