// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace tovik {

/// Where removable volumes appear in the file system.
struct MountPoint {
    /// With a slash at its end.
    std::string prefix;
    /// How many components of a path below it name the volume's own folder: 2 for "/Volumes/Stick".
    std::size_t volumeDepth = 0;

    bool operator==(const MountPoint&) const = default;
};

/// Where this program belongs on a platform, where it cannot stay, and how it is installed. Pure data.
struct InstallLocations {
    /// A program whose path contains one of these runs from a passing copy.
    std::vector<std::string> temporaryPathParts;
    std::vector<MountPoint> mountPoints;
    /// Folders of the home folder, by name, that hold what was downloaded and not yet installed; also where
    /// an installer is looked for, in this order.
    std::vector<std::string> downloadFolders;

    /// Exists exactly when the program is installed.
    std::string installedApplication;
    std::string relaunchExecutable;
    std::vector<std::string> relaunchArguments;

    /// What an installer's file name, in lower case, begins and ends with.
    std::string installerPrefix;
    std::string installerSuffix;
    /// Where an installer can be had when none is at hand; empty for nowhere.
    std::string installerDownload;

    bool operator==(const InstallLocations&) const = default;
};

} // namespace tovik
