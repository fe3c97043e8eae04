// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Permissions/PermissionChecklist.h"

#include "Permissions/Installation.h"

#include <algorithm>
#include <cstddef>
#include <utility>

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

constexpr RgbColor kButtonTint{0.33, 0.3, 0.92};
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

template <typename Status>
TovikVoicePermissionState stateOf(Status status) {
    switch (status) {
    case Status::notDetermined:
        return TovikVoicePermissionState::notDetermined;
    case Status::restricted:
        return TovikVoicePermissionState::restricted;
    case Status::denied:
        return TovikVoicePermissionState::denied;
    case Status::authorized:
        return TovikVoicePermissionState::granted;
    default:
        return TovikVoicePermissionState::unknown;
    }
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

TovikVoicePermissionState microphoneState(MicrophoneStatus status) {
    return stateOf(status);
}

TovikVoicePermissionState speechState(SpeechStatus status) {
    return stateOf(status);
}

std::string detailText(TovikVoicePermission permission, TovikVoicePermissionState state) {
    if (state == TovikVoicePermissionState::needsInstall) {
        return "Open installer and drag Tovik Record into Applications.";
    }
    if (permission == TovikVoicePermission::accessibility && state != TovikVoicePermissionState::granted) {
        return "Enable in Settings; reopen if needed.";
    }
    return subtitle(permission);
}

PermissionRowContents rowContents(TovikVoicePermission permission, TovikVoicePermissionState state) {
    const bool granted = state == TovikVoicePermissionState::granted;
    return {
        .statusText = statusText(state),
        .tint = tint(state),
        .detailText = detailText(permission, state),
        .buttonTitle = buttonTitle(state),
        .buttonTint = granted ? std::nullopt : std::optional(kButtonTint),
        .buttonAccessibilityLabel = title(permission) + " permission action",
        .buttonAccessibilityHelp = granted ? "Refresh " + title(permission) + " permission status"
                                           : "Request or open settings for " + title(permission),
    };
}

PermissionChecklist::PermissionChecklist(const Authorization& authorization, InstallLocations locations)
    : authorization_(authorization),
      locations_(std::move(locations)) {}

TovikVoicePermissionState PermissionChecklist::permissionState(TovikVoicePermission permission) const {
    switch (permission) {
    case TovikVoicePermission::microphone:
        return microphoneState(authorization_.microphoneStatus());
    case TovikVoicePermission::speech:
        return speechState(authorization_.speechStatus());
    case TovikVoicePermission::accessibility:
        break;
    }
    if (authorization_.isProcessTrusted()) {
        return TovikVoicePermissionState::granted;
    }
    return isRunningFromUninstalledLocation() ? TovikVoicePermissionState::needsInstall
                                              : TovikVoicePermissionState::notDetermined;
}

PermissionRowContents PermissionChecklist::row(TovikVoicePermission permission) const {
    return rowContents(permission, permissionState(permission));
}

bool PermissionChecklist::isRunningFromUninstalledLocation() const {
    return isUninstalledLocation(locations_, authorization_.bundlePath(), authorization_.homeDirectory());
}

bool PermissionChecklist::hasPendingPermissions() const {
    return std::any_of(kAllPermissions.begin(), kAllPermissions.end(), [this](auto permission) {
        return permissionState(permission) != TovikVoicePermissionState::granted;
    });
}

std::string PermissionChecklist::hintText() const {
    if (authorization_.isProcessTrusted()) {
        return "Grant these once so Tovik Record can listen, transcribe, and paste back into the app you "
               "were using.";
    }
    if (isRunningFromUninstalledLocation()) {
        return "Accessibility setup: 1. Open installer  2. Drag Tovik Record into Applications  3. Quit this "
               "copy  4. Reopen Tovik Record";
    }
    return "Accessibility setup: open Settings, turn on Tovik Record, then return here and Refresh.";
}

} // namespace tovik
