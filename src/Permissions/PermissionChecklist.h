// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Permissions/TovikVoicePermission.h"
#include "Platform/Authorization.h"

#include <optional>
#include <string>

namespace tovik {

[[nodiscard]] TovikVoicePermissionState microphoneState(MicrophoneStatus status);
[[nodiscard]] TovikVoicePermissionState speechState(SpeechStatus status);

/// The second line of a permission's row.
[[nodiscard]] std::string detailText(TovikVoicePermission permission, TovikVoicePermissionState state);

/// All that a permission's row shows of its state.
struct PermissionRowContents {
    std::string statusText;
    /// Of the status text and its dot.
    RgbColor tint;
    std::string detailText;
    std::string buttonTitle;
    /// Nothing for the dimmed look of a button that has little left to do; it can still be clicked.
    std::optional<RgbColor> buttonTint;
    std::string buttonAccessibilityLabel;
    std::string buttonAccessibilityHelp;

    bool operator==(const PermissionRowContents&) const = default;
};

[[nodiscard]] PermissionRowContents rowContents(TovikVoicePermission permission,
                                                TovikVoicePermissionState state);

/// Where the permissions stand. Nothing is remembered: every call asks the desktop. Main thread.
class PermissionChecklist {
public:
    PermissionChecklist(const Authorization& authorization, InstallLocations locations);

    [[nodiscard]] TovikVoicePermissionState permissionState(TovikVoicePermission permission) const;
    [[nodiscard]] PermissionRowContents row(TovikVoicePermission permission) const;

    /// Whether the program runs from where the desktop will not keep what it allows.
    [[nodiscard]] bool isRunningFromUninstalledLocation() const;

    /// Whether anything is still missing for a dictation.
    [[nodiscard]] bool hasPendingPermissions() const;

    /// The line under the rows.
    [[nodiscard]] std::string hintText() const;

private:
    const Authorization& authorization_;
    const InstallLocations locations_;
};

} // namespace tovik
