// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
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

/// Whether the program may use the microphone. The numbers are the platform's own; any other means unknown
/// too.
enum class MicrophoneStatus { notDetermined = 0, restricted = 1, denied = 2, authorized = 3, unknown = 4 };

/// Whether it may recognize speech, likewise; the platform counts the two kinds of refusal the other way
/// round.
enum class SpeechStatus { notDetermined = 0, denied = 1, restricted = 2, authorized = 3 };

/// What the desktop lets this program do. Main thread.
class Authorization {
public:
    virtual ~Authorization() = default;

    [[nodiscard]] virtual MicrophoneStatus microphoneStatus() const = 0;
    /// The answer may come on any thread.
    virtual void requestMicrophoneAccess(std::function<void(bool granted)> answer) = 0;

    [[nodiscard]] virtual SpeechStatus speechStatus() const = 0;
    /// Answers with the status that holds then. The answer may come on any thread.
    virtual void requestSpeechAuthorization(std::function<void(SpeechStatus status)> answer) = 0;

    /// Whether the program may see the talk key and press keys for the user.
    [[nodiscard]] virtual bool isProcessTrusted() const = 0;
    /// The same answer, and the desktop tells the user how to grant it.
    virtual bool isProcessTrustedWithPrompt() = 0;

    /// Where the running program is installed.
    [[nodiscard]] virtual std::string bundlePath() const = 0;
    /// Without a slash at its end.
    [[nodiscard]] virtual std::string homeDirectory() const = 0;
};

} // namespace tovik
