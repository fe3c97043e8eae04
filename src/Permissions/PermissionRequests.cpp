// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Permissions/PermissionRequests.h"

#include "Permissions/PermissionChecklist.h"
#include "Platform/Platform.h"

#include <algorithm>
#include <functional>

namespace tovik {

namespace {

constexpr std::string_view kPrivacyPanePrefix = "x-apple.systempreferences:com.apple.preference.security?";
constexpr std::string_view kMicrophoneAnchor = "Privacy_Microphone";
constexpr std::string_view kSpeechAnchor = "Privacy_SpeechRecognition";
constexpr Seconds kRefreshDelay{1.0};

/// Whether a text is made of characters that an address may hold.
bool isAddress(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char character) {
        return character > ' ' && character < '\x7f' &&
               std::string_view("\"<>\\^`{|}").find(character) == std::string_view::npos;
    });
}

/// Moves an answer from whatever thread it comes on to the main one.
template <typename Answer, typename Handler>
std::function<void(Answer)> onMainQueue(MainQueue& queue, Handler handler) {
    return
        [&queue, handler](Answer answer) { queue.async([handler, answer]() mutable { handler(answer); }); };
}

} // namespace

PermissionRequests::PermissionRequests(const Platform& platform, MainWindow& mainWindow,
                                       const PermissionChecklist& checklist)
    : platform_(platform),
      mainWindow_(mainWindow),
      checklist_(checklist),
      installation_(platform, mainWindow) {}

bool PermissionRequests::ensureRecordingPermissionsBeforeStart() {
    if (platform_.authorization.microphoneStatus() != MicrophoneStatus::authorized) {
        requestMicrophonePermission();
        mainWindow_.present();
        mainWindow_.showSavedToast("Grant microphone first");
        return false;
    }
    if (platform_.authorization.speechStatus() != SpeechStatus::authorized) {
        requestSpeechPermission();
        mainWindow_.present();
        mainWindow_.showSavedToast("Grant speech first");
        return false;
    }
    return true;
}

void PermissionRequests::refreshAndTell(const std::string& toast) {
    mainWindow_.refreshPermissions();
    mainWindow_.showSavedToast(toast);
}

void PermissionRequests::requestMicrophonePermission() {
    switch (platform_.authorization.microphoneStatus()) {
    case MicrophoneStatus::authorized:
        refreshAndTell("Microphone granted");
        break;
    case MicrophoneStatus::notDetermined:
        platform_.authorization.requestMicrophoneAccess(
            onMainQueue<bool>(platform_.mainQueue, lifetime_.guard([this](bool granted) {
                refreshAndTell(granted ? "Microphone granted" : "Microphone denied");
            })));
        break;
    default:
        openPaneAndTell(kMicrophoneAnchor);
        break;
    }
}

void PermissionRequests::requestSpeechPermission() {
    switch (platform_.authorization.speechStatus()) {
    case SpeechStatus::authorized:
        refreshAndTell("Speech granted");
        break;
    case SpeechStatus::notDetermined:
        platform_.authorization.requestSpeechAuthorization(
            onMainQueue<SpeechStatus>(platform_.mainQueue, lifetime_.guard([this](SpeechStatus status) {
                refreshAndTell(status == SpeechStatus::authorized ? "Speech granted" : "Speech denied");
            })));
        break;
    default:
        openPaneAndTell(kSpeechAnchor);
        break;
    }
}

void PermissionRequests::requestAccessibilityPermission() {
    if (platform_.authorization.isProcessTrusted()) {
        refreshAndTell("Accessibility granted");
        return;
    }
    if (checklist_.isRunningFromUninstalledLocation()) {
        installation_.showAccessibilityInstallGuidance();
        mainWindow_.refreshPermissions();
        return;
    }
    platform_.authorization.isProcessTrustedWithPrompt();
    mainWindow_.showSavedToast("Follow macOS prompt");
    platform_.mainQueue.asyncAfter(kRefreshDelay,
                                   lifetime_.guard([this] { mainWindow_.refreshPermissions(); }));
}

void PermissionRequests::permissionActionClicked(int index) {
    switch (index) {
    case static_cast<int>(TovikVoicePermission::microphone):
        requestMicrophonePermission();
        break;
    case static_cast<int>(TovikVoicePermission::speech):
        requestSpeechPermission();
        break;
    case static_cast<int>(TovikVoicePermission::accessibility):
        requestAccessibilityPermission();
        break;
    default:
        break;
    }
}

bool PermissionRequests::ensureAccessibilityAccess(bool showAlert) {
    if (platform_.authorization.isProcessTrusted()) {
        return true;
    }
    if (showAlert && !hasShownAccessibilityPrompt_) {
        hasShownAccessibilityPrompt_ = true;
        platform_.authorization.isProcessTrustedWithPrompt();
        platform_.log.logLine("[TovikVoice] Accessibility permission not granted");
    }
    return false;
}

PermissionRequests::Pane PermissionRequests::openPane(std::string_view anchor) {
    const auto address = std::string(kPrivacyPanePrefix).append(anchor);
    if (!isAddress(address)) {
        return Pane::noAddress;
    }
    return platform_.workspace.openUrl(address) ? Pane::opened : Pane::refused;
}

bool PermissionRequests::openPrivacyPane(std::string_view anchor) {
    return openPane(anchor) != Pane::noAddress;
}

void PermissionRequests::openPaneAndTell(std::string_view anchor) {
    // Not every desktop has settings that could be opened.
    mainWindow_.showSavedToast(openPane(anchor) == Pane::refused ? "Could not open Settings"
                                                                 : "Opening Settings");
}

} // namespace tovik
