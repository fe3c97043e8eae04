// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Permissions/PermissionChecklist.h"

#include "Permissions/Installation.h"
#include "support/FakeAuthorization.h"

#include <gtest/gtest.h>

#include <string>

namespace tovik::test {
namespace {

using Permission = TovikVoicePermission;
using State = TovikVoicePermissionState;

constexpr auto kAllGrantedHint =
    "Grant these once so Tovik Record can listen, transcribe, and paste back into the app you were using.";
constexpr auto kInstallHint =
    "Accessibility setup: 1. Open installer  2. Drag Tovik Record into Applications  "
    "3. Quit this copy  4. Reopen Tovik Record";
constexpr auto kSettingsHint =
    "Accessibility setup: open Settings, turn on Tovik Record, then return here and Refresh.";

class PermissionChecklistTest : public testing::Test {
protected:
    FakeAuthorization authorization;
    PermissionChecklist checklist{authorization, macInstallLocations()};
};

TEST_F(PermissionChecklistTest, whenMicrophoneIsGrantedAndSpeechRestricted_eachRowShowsItsOwn) {
    authorization.setMicrophoneStatus(3);
    authorization.setSpeechStatus(2);
    const auto microphone = checklist.row(Permission::microphone);
    EXPECT_EQ(microphone.statusText, "Granted");
    EXPECT_EQ(microphone.buttonTitle, "Refresh");
    EXPECT_EQ(microphone.buttonTint, std::nullopt);
    const auto speech = checklist.row(Permission::speech);
    EXPECT_EQ(speech.statusText, "Restricted");
    EXPECT_EQ(speech.buttonTitle, "Settings");
    EXPECT_EQ(speech.tint, (RgbColor{0.78, 0.18, 0.16}));
}

TEST_F(PermissionChecklistTest, whenBothSay1_microphoneIsRestrictedAndSpeechDenied) {
    authorization.setMicrophoneStatus(1);
    authorization.setSpeechStatus(1);
    EXPECT_EQ(checklist.permissionState(Permission::microphone), State::restricted);
    EXPECT_EQ(checklist.permissionState(Permission::speech), State::denied);
}

TEST_F(PermissionChecklistTest, whenTheDesktopChangesItsMind_theNextQuestionFindsOut) {
    authorization.setMicrophoneStatus(0);
    EXPECT_EQ(checklist.permissionState(Permission::microphone), State::notDetermined);
    authorization.setMicrophoneStatus(3);
    EXPECT_EQ(checklist.permissionState(Permission::microphone), State::granted);
}

struct AccessibilityRow {
    const char* name;
    bool trusted;
    const char* bundlePath;
    State state;
    const char* detail;
    const char* hint;
};

class AccessibilityState : public PermissionChecklistTest,
                           public testing::WithParamInterface<AccessibilityRow> {};

TEST_P(AccessibilityState, followsTrustAndPlace) {
    authorization.setTrusted(GetParam().trusted);
    authorization.setBundlePath(GetParam().bundlePath);
    EXPECT_EQ(checklist.permissionState(Permission::accessibility), GetParam().state);
    EXPECT_EQ(checklist.row(Permission::accessibility).detailText, GetParam().detail);
    EXPECT_EQ(checklist.hintText(), GetParam().hint);
    EXPECT_EQ(checklist.hasPendingPermissions(), !GetParam().trusted);
}

constexpr auto kInstallDetail = "Open installer and drag Tovik Record into Applications.";
constexpr auto kEnableDetail = "Enable in Settings; reopen if needed.";
constexpr auto kGrantedDetail = "Paste transcripts into the app you were using.";

INSTANTIATE_TEST_SUITE_P(
    Rows, AccessibilityState,
    testing::Values(AccessibilityRow{"trustedAndInstalled", true, "/Applications/Tovik Record.app",
                                     State::granted, kGrantedDetail, kAllGrantedHint},
                    AccessibilityRow{"trustedOnADiskImage", true, "/Volumes/Tovik Record/Tovik Record.app",
                                     State::granted, kGrantedDetail, kAllGrantedHint},
                    AccessibilityRow{"untrustedAndInstalled", false, "/Applications/Tovik Record.app",
                                     State::notDetermined, kEnableDetail, kSettingsHint},
                    AccessibilityRow{"untrustedInDocuments", false, "/Users/ada/Documents/Tovik Record.app",
                                     State::notDetermined, kEnableDetail, kSettingsHint},
                    AccessibilityRow{"untrustedOnTheDesktop", false, "/Users/ada/Desktop/Tovik Record.app",
                                     State::needsInstall, kInstallDetail, kInstallHint},
                    AccessibilityRow{"untrustedAndTranslocated", false,
                                     "/private/var/x/AppTranslocation/y/Tovik Record.app",
                                     State::needsInstall, kInstallDetail, kInstallHint},
                    AccessibilityRow{"untrustedOnAnExternalDisk", false, "/Volumes/Backup/Tovik Record.app",
                                     State::needsInstall, kInstallDetail, kInstallHint}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(PermissionChecklistTest, whenTheHomeFolderIsElsewhere_itsDesktopCounts) {
    authorization.setTrusted(false);
    authorization.setBundlePath("/Users/ada/Desktop/Tovik Record.app");
    EXPECT_TRUE(checklist.isRunningFromUninstalledLocation());
    authorization.setHomeDirectory("/Users/bob");
    EXPECT_FALSE(checklist.isRunningFromUninstalledLocation());
}

struct PendingRow {
    const char* name;
    int microphone;
    int speech;
    bool trusted;
    bool pending;
};

class PendingPermissions : public PermissionChecklistTest, public testing::WithParamInterface<PendingRow> {};

TEST_P(PendingPermissions, areThoseThatCannotBeUsedYet) {
    authorization.setMicrophoneStatus(GetParam().microphone);
    authorization.setSpeechStatus(GetParam().speech);
    authorization.setTrusted(GetParam().trusted);
    EXPECT_EQ(checklist.hasPendingPermissions(), GetParam().pending);
}

INSTANTIATE_TEST_SUITE_P(Rows, PendingPermissions,
                         testing::Values(PendingRow{"allGranted", 3, 3, true, false},
                                         PendingRow{"microphoneMissing", 0, 3, true, true},
                                         PendingRow{"microphoneUnknown", 4, 3, true, true},
                                         PendingRow{"speechMissing", 3, 2, true, true},
                                         PendingRow{"accessibilityMissing", 3, 3, false, true},
                                         PendingRow{"nothingGranted", 0, 0, false, true}),
                         [](const auto& row) { return std::string(row.param.name); });

} // namespace
} // namespace tovik::test
