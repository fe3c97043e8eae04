// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Permissions/TovikVoicePermissionState.h"

#include <array>
#include <cstddef>

namespace tovik {

namespace {

struct Look {
    const char* statusText;
    const char* buttonTitle;
    RgbColor tint;
};

constexpr RgbColor kGreen{0.12, 0.55, 0.24};
constexpr RgbColor kAmber{0.95, 0.56, 0.12};
constexpr RgbColor kRed{0.78, 0.18, 0.16};
constexpr RgbColor kGrey{0.4, 0.4, 0.4};

constexpr std::array<Look, 6> kLooks{{
    {"Granted", "Refresh", kGreen},
    {"Needs setup", "Grant", kAmber},
    {"Install app", "Fix", kAmber},
    {"Open Settings", "Settings", kRed},
    {"Restricted", "Settings", kRed},
    {"Unknown", "Check", kGrey},
}};

const Look& lookOf(TovikVoicePermissionState state) {
    return kLooks[static_cast<std::size_t>(state)];
}

} // namespace

std::string statusText(TovikVoicePermissionState state) {
    return lookOf(state).statusText;
}

std::string buttonTitle(TovikVoicePermissionState state) {
    return lookOf(state).buttonTitle;
}

RgbColor tint(TovikVoicePermissionState state) {
    return lookOf(state).tint;
}

} // namespace tovik
