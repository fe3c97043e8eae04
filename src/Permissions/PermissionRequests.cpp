// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Permissions/PermissionRequests.h"

#include <algorithm>

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

PermissionRequests::PermissionRequests(const Collaborators& collaborators) : with_(collaborators) {}

void PermissionRequests::refreshAndTell(const std::string& toast) {
    with_.mainWindow.refreshPermissions();
    with_.mainWindow.showSavedToast(toast);
}

void PermissionRequests::requestMicrophonePermission() {
    switch (with_.authorization.microphoneStatus()) {
    case kAuthorizedStatus:
        refreshAndTell("Microphone granted");
        break;
    case kNotDeterminedStatus:
        with_.authorization.requestMicrophoneAccess(
            onMainQueue<bool>(with_.mainQueue, lifetime_.guard([this](bool granted) {
                refreshAndTell(granted ? "Microphone granted" : "Microphone denied");
            })));
        break;
    default:
        openPaneAndTell(kMicrophoneAnchor);
        break;
    }
}

void PermissionRequests::requestSpeechPermission() {
    switch (with_.authorization.speechStatus()) {
    case kAuthorizedStatus:
        refreshAndTell("Speech granted");
        break;
    case kNotDeterminedStatus:
        with_.authorization.requestSpeechAuthorization(
            onMainQueue<int>(with_.mainQueue, lifetime_.guard([this](int status) {
                refreshAndTell(status == kAuthorizedStatus ? "Speech granted" : "Speech denied");
            })));
        break;
    default:
        openPaneAndTell(kSpeechAnchor);
        break;
    }
}

void PermissionRequests::requestAccessibilityPermission() {
    if (with_.authorization.isProcessTrusted()) {
        refreshAndTell("Accessibility granted");
        return;
    }
    if (with_.checklist.isRunningFromUninstalledLocation()) {
        with_.installation.showAccessibilityInstallGuidance();
        with_.mainWindow.refreshPermissions();
        return;
    }
    with_.authorization.isProcessTrustedWithPrompt();
    with_.mainWindow.showSavedToast("Follow macOS prompt");
    with_.mainQueue.asyncAfter(kRefreshDelay,
                               lifetime_.guard([this] { with_.mainWindow.refreshPermissions(); }));
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
    if (with_.authorization.isProcessTrusted()) {
        return true;
    }
    if (showAlert && !hasShownAccessibilityPrompt_) {
        hasShownAccessibilityPrompt_ = true;
        with_.authorization.isProcessTrustedWithPrompt();
        with_.log.logLine("[TovikVoice] Accessibility permission not granted");
    }
    return false;
}

PermissionRequests::Pane PermissionRequests::openPane(std::string_view anchor) {
    const auto address = std::string(kPrivacyPanePrefix).append(anchor);
    if (!isAddress(address)) {
        return Pane::noAddress;
    }
    return with_.workspace.openUrl(address) ? Pane::opened : Pane::refused;
}

bool PermissionRequests::openPrivacyPane(std::string_view anchor) {
    return openPane(anchor) != Pane::noAddress;
}

void PermissionRequests::openPaneAndTell(std::string_view anchor) {
    // Not every desktop has settings that could be opened.
    with_.mainWindow.showSavedToast(openPane(anchor) == Pane::refused ? "Could not open Settings"
                                                                      : "Opening Settings");
}

} // namespace tovik
