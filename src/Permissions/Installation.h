// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Authorization.h"
#include "Platform/Subscription.h"

#include <optional>
#include <string>

namespace tovik {

struct MainWindow;
struct Platform;

[[nodiscard]] InstallLocations macInstallLocations();

/// installedExecutable: where the system's package puts the program.
[[nodiscard]] InstallLocations linuxInstallLocations(const std::string& installedExecutable);

/// Whether a program at this path must be installed before the desktop remembers what it is allowed to do.
/// Plain comparison of text, letter by letter; links are not followed.
[[nodiscard]] bool isUninstalledLocation(const InstallLocations& locations, const std::string& path,
                                         const std::string& homeDirectory);

/// Leads a copy of the program that runs from a download folder or a stick to its fixed place. Main thread.
class Installation {
public:
    Installation(const Platform& platform, MainWindow& mainWindow);
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

    const Platform& platform_;
    MainWindow& mainWindow_;
    bool relaunchPending_ = false;
    Lifetime lifetime_;
};

} // namespace tovik
