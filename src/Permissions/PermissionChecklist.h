// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Authorization.h"

#include <array>
#include <optional>
#include <string>

namespace tovik {

/// What the user must allow before a dictation works from end to end.
enum class TovikVoicePermission { microphone, speech, accessibility };

/// In the order in which they are shown and asked for.
inline constexpr std::array<TovikVoicePermission, 3> kAllPermissions{
    TovikVoicePermission::microphone, TovikVoicePermission::speech, TovikVoicePermission::accessibility};

[[nodiscard]] std::string rawValue(TovikVoicePermission permission);
[[nodiscard]] std::string title(TovikVoicePermission permission);
[[nodiscard]] std::string subtitle(TovikVoicePermission permission);
[[nodiscard]] std::string symbolName(TovikVoicePermission permission);

/// How a permission stands. needsInstall is for accessibility only.
enum class TovikVoicePermissionState {
    granted = 0,
    notDetermined = 1,
    needsInstall = 2,
    denied = 3,
    restricted = 4,
    unknown = 5
};

/// An opaque colour, each part 0...1.
struct RgbColor {
    double red = 0;
    double green = 0;
    double blue = 0;

    bool operator==(const RgbColor&) const = default;
};

[[nodiscard]] std::string statusText(TovikVoicePermissionState state);
[[nodiscard]] std::string buttonTitle(TovikVoicePermissionState state);
[[nodiscard]] RgbColor tint(TovikVoicePermissionState state);

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
