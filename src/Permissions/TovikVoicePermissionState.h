// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tovik {

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
