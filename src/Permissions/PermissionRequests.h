// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Permissions/Installation.h"
#include "Platform/Subscription.h"

#include <string>
#include <string_view>

namespace tovik {

class PermissionChecklist;

/// What happens when the user, or a recording, asks for a permission. Each request asks, explains or opens
/// the desktop's settings, as the state requires, and ends with a toast. Main thread.
class PermissionRequests {
public:
    PermissionRequests(const Platform& platform, MainWindow& mainWindow,
                       const PermissionChecklist& checklist);

    /// Whether a recording may begin. When not, the first permission that is missing is asked for, and the
    /// main window says so.
    [[nodiscard]] bool ensureRecordingPermissionsBeforeStart();

    void requestMicrophonePermission();
    void requestSpeechPermission();
    void requestAccessibilityPermission();

    /// The button of the row at this index was clicked; any other index is ignored.
    void permissionActionClicked(int index);

    /// Whether keys may be pressed for the user. When not, and showAlert is true, the desktop tells the user
    /// how to grant it: once while the program runs.
    bool ensureAccessibilityAccess(bool showAlert);

    /// Opens a page of the desktop's privacy settings. False when the anchor makes no address.
    bool openPrivacyPane(std::string_view anchor);

private:
    enum class Pane { opened, refused, noAddress };

    Pane openPane(std::string_view anchor);
    void openPaneAndTell(std::string_view anchor);
    void refreshAndTell(const std::string& toast);

    const Platform& platform_;
    MainWindow& mainWindow_;
    const PermissionChecklist& checklist_;
    Installation installation_;
    bool hasShownAccessibilityPrompt_ = false;
    Lifetime lifetime_;
};

} // namespace tovik
