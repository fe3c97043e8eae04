// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Permissions/Installation.h"

#include "Platform/AsciiCase.h"

#include <algorithm>
#include <utility>

namespace tovik {

namespace {

constexpr Seconds kRefreshDelay{1.0};
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

Installation::Installation(const Collaborators& collaborators, InstallLocations locations)
    : with_(collaborators),
      locations_(std::move(locations)) {}

Installation::~Installation() {
    // The event loop may well end before the delay of a relaunch has passed.
    relaunchIfPending();
}

std::optional<std::string> Installation::folderOfMountedVolume() const {
    const auto path = with_.authorization.bundlePath();
    for (const auto& mount : locations_.mountPoints) {
        if (path.starts_with(mount.prefix)) {
            return leadingComponents(path, mount.volumeDepth);
        }
    }
    return std::nullopt;
}

bool Installation::isInstaller(const std::string& path) const {
    const auto name = asciiLowerCased(path.substr(path.rfind('/') + 1));
    return name.starts_with(locations_.installerPrefix) && name.ends_with(locations_.installerSuffix);
}

std::optional<std::string> Installation::newestInstaller() const {
    std::vector<FolderEntry> installers;
    for (const auto& folder : locations_.downloadFolders) {
        const auto contents =
            with_.files.contentsOfFolder(with_.authorization.homeDirectory() + "/" + folder);
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
        with_.workspace.openFile(*volume);
        return true;
    }
    if (const auto installer = newestInstaller()) {
        with_.workspace.openFile(*installer);
        return true;
    }
    if (locations_.installerDownload.empty()) {
        return false;
    }
    with_.workspace.openUrl(locations_.installerDownload);
    return true;
}

void Installation::showAccessibilityInstallGuidance() {
    const int button = with_.alert.runModal(
        "Finish installing Tovik Record",
        "macOS grants Accessibility to the exact app location. Open the installer, drag Tovik Record into "
        "Applications, then quit this copy and reopen Tovik Record from Applications before granting "
        "Accessibility.",
        {"Open Installer", "Quit & Reopen", "Not Now"});
    switch (button) {
    case openInstaller:
        with_.mainWindow.showSavedToast(openTovikRecordInstaller() ? "Drag into Applications"
                                                                   : "Installer unavailable");
        with_.mainQueue.asyncAfter(kRefreshDelay,
                                   lifetime_.guard([this] { with_.mainWindow.refreshPermissions(); }));
        break;
    case quitAndReopen:
        quitAndReopenInstalledApp();
        break;
    default:
        with_.mainWindow.showSavedToast("Install needed");
        break;
    }
}

void Installation::relaunchIfPending() {
    if (std::exchange(relaunchPending_, false)) {
        // This copy is on its way out: there is nobody left to tell of a failure.
        static_cast<void>(
            with_.processLauncher.launch(locations_.relaunchExecutable, locations_.relaunchArguments));
    }
}

void Installation::quitAndReopenInstalledApp() {
    if (!with_.files.exists(locations_.installedApplication)) {
        with_.mainWindow.showSavedToast("Install Tovik Record first");
        openTovikRecordInstaller();
        return;
    }
    relaunchPending_ = true;
    with_.mainQueue.asyncAfter(kRelaunchDelay, lifetime_.guard([this] { relaunchIfPending(); }));
    with_.terminate();
}

} // namespace tovik
