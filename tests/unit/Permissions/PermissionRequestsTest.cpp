// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "PermissionsFixture.h"

#include <thread>

namespace tovik::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr auto kMicrophonePane = "x-apple.systempreferences:com.apple.preference.security?Privacy_Microphone";
constexpr auto kSpeechPane =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_SpeechRecognition";

class PermissionRequestsTest : public PermissionsFixture {};

// --------------------------------------------------------------------------------- microphone

TEST_F(PermissionRequestsTest, whenTheMicrophoneIsGranted_refreshesAndSaysSo) {
    requests().requestMicrophonePermission();
    EXPECT_THAT(window.calls(), ElementsAre("refreshPermissions", "toast: Microphone granted"));
    EXPECT_EQ(authorization.openMicrophoneRequests(), 0U);
}

TEST_F(PermissionRequestsTest, whenTheMicrophoneIsNotDetermined_asksAndTellsTheAnswer) {
    for (const bool granted : {true, false}) {
        authorization.setMicrophoneStatus(0);
        window.forgetCalls();
        requests().requestMicrophonePermission();
        EXPECT_THAT(window.calls(), IsEmpty());
        authorization.answerMicrophoneRequest(granted);
        EXPECT_THAT(window.calls(), IsEmpty()) << "the answer goes over the main queue";
        time.runPending();
        EXPECT_THAT(window.calls(), ElementsAre("refreshPermissions", granted ? "toast: Microphone granted"
                                                                              : "toast: Microphone denied"));
    }
    EXPECT_THAT(workspace.openedUrls, IsEmpty());
}

TEST_F(PermissionRequestsTest, whenTheUserRefusesAndClicksAgain_theSettingsOpen) {
    authorization.setMicrophoneStatus(0);
    requests().requestMicrophonePermission();
    authorization.answerMicrophoneRequest(false);
    time.runPending();
    requests().requestMicrophonePermission();
    EXPECT_THAT(window.toasts(), ElementsAre("Microphone denied", "Opening Settings"));
    EXPECT_THAT(workspace.openedUrls, ElementsAre(kMicrophonePane));
}

TEST_F(PermissionRequestsTest, whenTheMicrophoneHasAnyOtherStatus_opensItsPaneWithoutARefresh) {
    for (const int status : {1, 2, 4, -1}) {
        workspace.openedUrls.clear();
        window.forgetCalls();
        authorization.setMicrophoneStatus(status);
        requests().requestMicrophonePermission();
        EXPECT_THAT(workspace.openedUrls, ElementsAre(kMicrophonePane)) << status;
        EXPECT_THAT(window.calls(), ElementsAre("toast: Opening Settings")) << status;
    }
    EXPECT_EQ(authorization.openMicrophoneRequests(), 0U);
}

TEST_F(PermissionRequestsTest, whenTheAnswerComesAfterTheEnd_nothingHappens) {
    authorization.setMicrophoneStatus(0);
    authorization.setSpeechStatus(0);
    requests().requestMicrophonePermission();
    requests().requestSpeechPermission();
    destroyRequests();
    authorization.answerMicrophoneRequest(true);
    authorization.answerSpeechRequest(3);
    time.runPending();
    EXPECT_THAT(window.calls(), IsEmpty());
}

TEST_F(PermissionRequestsTest, whenTheEndComesBetweenAnswerAndMainQueue_nothingHappens) {
    authorization.setMicrophoneStatus(0);
    requests().requestMicrophonePermission();
    authorization.answerMicrophoneRequest(true);
    destroyRequests();
    time.runPending();
    EXPECT_THAT(window.calls(), IsEmpty());
}

TEST_F(PermissionRequestsTest, whenTheAnswerComesOnAnotherThread_itIsTakenToTheMainOne) {
    authorization.setMicrophoneStatus(0);
    requests().requestMicrophonePermission();
    std::thread desktop([this] { authorization.answerMicrophoneRequest(true); });
    desktop.join();
    EXPECT_THAT(window.calls(), IsEmpty());
    time.runPending();
    EXPECT_THAT(window.toasts(), ElementsAre("Microphone granted"));
}

TEST_F(PermissionRequestsTest, whenAskedTwiceBeforeTheAnswer_bothAreTold) {
    authorization.setMicrophoneStatus(0);
    requests().requestMicrophonePermission();
    requests().requestMicrophonePermission();
    authorization.answerMicrophoneRequest(true);
    authorization.answerMicrophoneRequest(true);
    time.runPending();
    EXPECT_THAT(window.toasts(), SizeIs(2));
}

// ------------------------------------------------------------------------------------- speech

TEST_F(PermissionRequestsTest, whenSpeechIsGranted_refreshesAndSaysSo) {
    requests().requestSpeechPermission();
    EXPECT_THAT(window.calls(), ElementsAre("refreshPermissions", "toast: Speech granted"));
}

TEST_F(PermissionRequestsTest, whenSpeechIsNotDetermined_asksAndTellsTheStatus) {
    for (const int status : {3, 1, 2, 0}) {
        authorization.setSpeechStatus(0);
        window.forgetCalls();
        requests().requestSpeechPermission();
        authorization.answerSpeechRequest(status);
        EXPECT_THAT(window.calls(), IsEmpty());
        time.runPending();
        EXPECT_THAT(window.calls(), ElementsAre("refreshPermissions", status == 3 ? "toast: Speech granted"
                                                                                  : "toast: Speech denied"))
            << status;
    }
}

TEST_F(PermissionRequestsTest, whenSpeechHasAnyOtherStatus_opensItsPaneWithoutARefresh) {
    for (const int status : {1, 2, 4}) {
        workspace.openedUrls.clear();
        window.forgetCalls();
        authorization.setSpeechStatus(status);
        requests().requestSpeechPermission();
        EXPECT_THAT(workspace.openedUrls, ElementsAre(kSpeechPane)) << status;
        EXPECT_THAT(window.calls(), ElementsAre("toast: Opening Settings")) << status;
    }
}

TEST_F(PermissionRequestsTest, whenTheDesktopHasNoSettingsToOpen_saysThatInstead) {
    workspace.openingWorks = false;
    authorization.setMicrophoneStatus(2);
    authorization.setSpeechStatus(2);
    requests().requestMicrophonePermission();
    requests().requestSpeechPermission();
    EXPECT_THAT(window.toasts(), ElementsAre("Could not open Settings", "Could not open Settings"));
}

// ------------------------------------------------------------------------------ accessibility

TEST_F(PermissionRequestsTest, whenTrusted_refreshesAndSaysSo) {
    requests().requestAccessibilityPermission();
    EXPECT_THAT(window.calls(), ElementsAre("refreshPermissions", "toast: Accessibility granted"));
    EXPECT_EQ(authorization.trustPrompts(), 0);
}

TEST_F(PermissionRequestsTest, whenUntrustedAndInstalled_promptsAndRefreshesASecondLater) {
    authorization.setTrusted(false);
    requests().requestAccessibilityPermission();
    EXPECT_EQ(authorization.trustPrompts(), 1);
    EXPECT_THAT(window.calls(), ElementsAre("toast: Follow macOS prompt"));
    EXPECT_THAT(workspace.openedUrls, IsEmpty());
    time.advance(Seconds(0.9));
    EXPECT_EQ(window.permissionRefreshes(), 0);
    time.advance(Seconds(0.1));
    EXPECT_EQ(window.permissionRefreshes(), 1);
}

TEST_F(PermissionRequestsTest, whenClickedAgainWhileUntrusted_promptsAgain) {
    authorization.setTrusted(false);
    requests().requestAccessibilityPermission();
    requests().requestAccessibilityPermission();
    EXPECT_EQ(authorization.trustPrompts(), 2);
}

TEST_F(PermissionRequestsTest, whenTheProgramEndsBeforeTheRefresh_nothingHappens) {
    authorization.setTrusted(false);
    requests().requestAccessibilityPermission();
    destroyRequests();
    time.advance(Seconds(2));
    EXPECT_EQ(window.permissionRefreshes(), 0);
}

TEST_F(PermissionRequestsTest, whenUntrustedOnTheDesktop_guidesTheInstallationWithoutAPrompt) {
    authorization.setTrusted(false);
    authorization.setBundlePath("/Users/ada/Desktop/Tovik Record.app");
    requests().requestAccessibilityPermission();
    EXPECT_EQ(authorization.trustPrompts(), 0);
    EXPECT_THAT(alert.questions(), SizeIs(1));
    EXPECT_THAT(window.calls(), ElementsAre("toast: Install needed", "refreshPermissions"));
}

// -------------------------------------------------------------------------- before a paste

TEST_F(PermissionRequestsTest, whenTrusted_thePasteMayGoOn) {
    EXPECT_TRUE(requests().ensureAccessibilityAccess(true));
    EXPECT_TRUE(requests().ensureAccessibilityAccess(false));
    EXPECT_EQ(authorization.trustPrompts(), 0);
    EXPECT_THAT(log.logged(), IsEmpty());
}

TEST_F(PermissionRequestsTest, whenUntrustedThreeTimes_promptsAndLogsOnceOnly) {
    authorization.setTrusted(false);
    for (int attempt = 0; attempt < 3; ++attempt) {
        EXPECT_FALSE(requests().ensureAccessibilityAccess(true));
    }
    EXPECT_EQ(authorization.trustPrompts(), 1);
    EXPECT_THAT(log.logged(), ElementsAre("[TovikVoice] Accessibility permission not granted"));
    EXPECT_THAT(log.printed(), IsEmpty());
    EXPECT_THAT(window.calls(), IsEmpty());
}

TEST_F(PermissionRequestsTest, whenNoAlertIsWanted_staysSilentAndKeepsThePromptForLater) {
    authorization.setTrusted(false);
    EXPECT_FALSE(requests().ensureAccessibilityAccess(false));
    EXPECT_EQ(authorization.trustPrompts(), 0);
    EXPECT_FALSE(requests().ensureAccessibilityAccess(true));
    EXPECT_EQ(authorization.trustPrompts(), 1);
}

TEST_F(PermissionRequestsTest, whenThePromptGrantsTrust_theNextPasteMayGoOn) {
    authorization.setTrusted(false);
    EXPECT_FALSE(requests().ensureAccessibilityAccess(true));
    authorization.setTrusted(true);
    EXPECT_TRUE(requests().ensureAccessibilityAccess(true));
}

TEST_F(PermissionRequestsTest, theRowsPromptDoesNotUseUpThePromptBeforeAPaste) {
    authorization.setTrusted(false);
    requests().requestAccessibilityPermission();
    EXPECT_FALSE(requests().ensureAccessibilityAccess(true));
    EXPECT_EQ(authorization.trustPrompts(), 2);
}

// ------------------------------------------------------------------------------------- panes

TEST_F(PermissionRequestsTest, whenAPaneIsOpened_itsAddressIsPrefixAndAnchor) {
    EXPECT_TRUE(requests().openPrivacyPane("Privacy_Anything"));
    EXPECT_THAT(workspace.openedUrls,
                ElementsAre("x-apple.systempreferences:com.apple.preference.security?Privacy_Anything"));
}

TEST_F(PermissionRequestsTest, whenTheAnchorMakesNoAddress_opensNothing) {
    for (const char* anchor : {"Privacy Microphone", "Privacy\n", "Priv\xc3\xa4", "<Privacy>"}) {
        EXPECT_FALSE(requests().openPrivacyPane(anchor)) << anchor;
    }
    EXPECT_THAT(workspace.openedUrls, IsEmpty());
}

TEST_F(PermissionRequestsTest, whenTheDesktopDoesNotTakeTheAddress_theAddressWasFormedAllTheSame) {
    workspace.openingWorks = false;
    EXPECT_TRUE(requests().openPrivacyPane("Privacy_Microphone"));
}

// ----------------------------------------------------------------------------------- buttons

TEST_F(PermissionRequestsTest, whenARowsButtonIsClicked_asksForItsPermission) {
    requests().permissionActionClicked(0);
    requests().permissionActionClicked(1);
    requests().permissionActionClicked(2);
    EXPECT_THAT(window.toasts(),
                ElementsAre("Microphone granted", "Speech granted", "Accessibility granted"));
}

TEST_F(PermissionRequestsTest, whenAnUnknownButtonIsClicked_doesNothing) {
    requests().permissionActionClicked(-1);
    requests().permissionActionClicked(3);
    EXPECT_THAT(window.calls(), IsEmpty());
}

} // namespace
} // namespace tovik::test
