// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Permissions/TovikVoicePermission.h"

#include <cstddef>

namespace tovik {

namespace {

struct Texts {
    const char* rawValue;
    const char* title;
    const char* subtitle;
    const char* symbolName;
};

constexpr std::array<Texts, kAllPermissions.size()> kTexts{{
    {"microphone", "Microphone", "Capture audio for dictation.", "mic.fill"},
    {"speech", "Speech Recognition", "Convert speech into text.", "waveform"},
    {"accessibility", "Accessibility", "Paste transcripts into the app you were using.",
     "cursorarrow.motionlines"},
}};

const Texts& textsOf(TovikVoicePermission permission) {
    return kTexts[static_cast<std::size_t>(permission)];
}

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

std::string rawValue(TovikVoicePermission permission) {
    return textsOf(permission).rawValue;
}

std::string title(TovikVoicePermission permission) {
    return textsOf(permission).title;
}

std::string subtitle(TovikVoicePermission permission) {
    return textsOf(permission).subtitle;
}

std::string symbolName(TovikVoicePermission permission) {
    return textsOf(permission).symbolName;
}

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
