// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Permissions/Installation.h"

#include "Platform/AsciiCase.h"
#include "Platform/Platform.h"

#include <algorithm>
#include <utility>

namespace tovik {

namespace {

constexpr auto kInstallerDownload = "https://tovik.example/downloads/tovik-record/TovikRecord-1.3.6.dmg";
constexpr Seconds kRefreshDelayOfACopy{1.0};
constexpr Seconds kRelaunchDelay{0.25};

enum GuidanceButton { openInstaller = 0, quitAndReopen = 1 };

/// The first `count` components of an absolute path, or nothing when it has fewer.
std::optional<std::string> leadingComponents(const std::string& path, std::size_t count) {
    std::string folder;
    std::size_t position = 0;
    while (count > 0 && position < path.size()) {
        const auto begin = path.find_first_not_of('/', position);
        if (begin == std::string::npos) {
            break;
        }
        const auto end = std::min(path.find('/', begin), path.size());
        folder += '/' + path.substr(begin, end - begin);
        position = end;
        --count;
    }
    return count == 0 ? std::optional(folder) : std::nullopt;
}

} // namespace

InstallLocations macInstallLocations() {
    const std::string installed = "/Applications/Tovik Record.app";
    return {
        .temporaryPathParts = {"/AppTranslocation/"},
        .mountPoints = {{"/Volumes/", 2}},
        .downloadFolders = {"Downloads", "Desktop"},
        .installedApplication = installed,
        .relaunchExecutable = "/usr/bin/open",
        .relaunchArguments = {"-n", installed},
        .installerPrefix = "tovikrecord-",
        .installerSuffix = ".dmg",
        .installerDownload = kInstallerDownload,
    };
}

InstallLocations linuxInstallLocations(const std::string& installedExecutable) {
    auto locations = macInstallLocations();
    locations.temporaryPathParts = {};
    // Desktops mount a stick below the name of the user who plugged it in.
    locations.mountPoints = {{"/media/", 3}, {"/run/media/", 4}};
    locations.installedApplication = installedExecutable;
    locations.relaunchExecutable = installedExecutable;
    locations.relaunchArguments = {};
    return locations;
}

bool isUninstalledLocation(const InstallLocations& locations, const std::string& path,
                           const std::string& homeDirectory) {
    return std::any_of(locations.temporaryPathParts.begin(), locations.temporaryPathParts.end(),
                       [&](const auto& part) { return path.find(part) != std::string::npos; }) ||
           std::any_of(locations.mountPoints.begin(), locations.mountPoints.end(),
                       [&](const auto& mount) { return path.starts_with(mount.prefix); }) ||
           std::any_of(
               locations.downloadFolders.begin(), locations.downloadFolders.end(),
               [&](const auto& folder) { return path.starts_with(homeDirectory + "/" + folder + "/"); });
}

Installation::Installation(const Platform& platform, MainWindow& mainWindow)
    : platform_(platform),
      mainWindow_(mainWindow) {}

Installation::~Installation() {
    // The event loop may well end before the delay of a relaunch has passed.
    relaunchIfPending();
}

std::optional<std::string> Installation::folderOfMountedVolume() const {
    const auto path = platform_.authorization.bundlePath();
    for (const auto& mount : platform_.installLocations.mountPoints) {
        if (path.starts_with(mount.prefix)) {
            return leadingComponents(path, mount.volumeDepth);
        }
    }
    return std::nullopt;
}

bool Installation::isInstaller(const std::string& path) const {
    const auto name = asciiLowerCased(path.substr(path.rfind('/') + 1));
    return name.starts_with(platform_.installLocations.installerPrefix) &&
           name.ends_with(platform_.installLocations.installerSuffix);
}

std::optional<std::string> Installation::newestInstaller() const {
    std::vector<FolderEntry> installers;
    for (const auto& folder : platform_.installLocations.downloadFolders) {
        const auto contents =
            platform_.files.contentsOfFolder(platform_.authorization.homeDirectory() + "/" + folder);
        if (!contents) {
            continue;
        }
        std::copy_if(contents.value().begin(), contents.value().end(), std::back_inserter(installers),
                     [this](const FolderEntry& entry) { return isInstaller(entry.path); });
    }
    // Among equally new ones the first counts; one without a date is older than any other.
    const auto newest =
        std::max_element(installers.begin(), installers.end(), [](const auto& a, const auto& b) {
            return a.contentModificationDate < b.contentModificationDate;
        });
    return newest == installers.end() ? std::nullopt : std::optional(newest->path);
}

bool Installation::openTovikRecordInstaller() {
    if (const auto volume = folderOfMountedVolume()) {
        platform_.workspace.openFile(*volume);
        return true;
    }
    if (const auto installer = newestInstaller()) {
        platform_.workspace.openFile(*installer);
        return true;
    }
    if (platform_.installLocations.installerDownload.empty()) {
        return false;
    }
    platform_.workspace.openUrl(platform_.installLocations.installerDownload);
    return true;
}

void Installation::showAccessibilityInstallGuidance() {
    const int button = platform_.alert.runModal(
        "Finish installing Tovik Record",
        "macOS grants Accessibility to the exact app location. Open the installer, drag Tovik Record into "
        "Applications, then quit this copy and reopen Tovik Record from Applications before granting "
        "Accessibility.",
        {"Open Installer", "Quit & Reopen", "Not Now"});
    switch (button) {
    case openInstaller:
        mainWindow_.showSavedToast(openTovikRecordInstaller() ? "Drag into Applications"
                                                              : "Installer unavailable");
        platform_.mainQueue.asyncAfter(kRefreshDelayOfACopy,
                                       lifetime_.guard([this] { mainWindow_.refreshPermissions(); }));
        break;
    case quitAndReopen:
        quitAndReopenInstalledApp();
        break;
    default:
        mainWindow_.showSavedToast("Install needed");
        break;
    }
}

void Installation::relaunchIfPending() {
    if (std::exchange(relaunchPending_, false)) {
        // This copy is on its way out: there is nobody left to tell of a failure.
        static_cast<void>(platform_.processLauncher.launch(platform_.installLocations.relaunchExecutable,
                                                           platform_.installLocations.relaunchArguments));
    }
}

void Installation::quitAndReopenInstalledApp() {
    if (!platform_.files.exists(platform_.installLocations.installedApplication)) {
        mainWindow_.showSavedToast("Install Tovik Record first");
        openTovikRecordInstaller();
        return;
    }
    relaunchPending_ = true;
    platform_.mainQueue.asyncAfter(kRelaunchDelay, lifetime_.guard([this] { relaunchIfPending(); }));
    platform_.terminate();
}

} // namespace tovik
