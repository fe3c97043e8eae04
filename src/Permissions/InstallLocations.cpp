// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Permissions/InstallLocations.h"

#include <algorithm>

namespace tovik {

namespace {

constexpr auto kInstallerDownload = "https://tovik.example/downloads/tovik-record/TovikRecord-1.3.6.dmg";

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

} // namespace tovik
