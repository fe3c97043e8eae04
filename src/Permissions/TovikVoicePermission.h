// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <array>
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

} // namespace tovik
