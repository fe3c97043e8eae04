// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/LinuxAuthorization.h"

#include "support/FakeUserInterface.h"
#include "support/ManualTime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace tovik::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr int kCheckAgain = 0;
constexpr int kClose = 1;
constexpr auto kNoModel = "There is no speech model. Install the Debian package pocketsphinx-en-us.";

class LinuxAuthorizationTest : public testing::Test {
protected:
    [[nodiscard]] LinuxAuthorization::Answers answers() {
        return {
            .microphoneStatus = [this] { return microphoneStatus; },
            .microphoneExplanation = [this] { return microphoneExplanation; },
            .speechExplanation = [this] { return speechExplanation; },
            .needsSpeechConsent = [this] { return hasServer && !consent; },
            .speechConsentText = [] { return "It would go to a server."; },
            .answerSpeechConsent = [this](bool isAllowed) { consent = isAllowed; },
            .isSpeechRefused = [this] { return hasServer && consent == false; },
            .isKeyboardUsable = [this] { return keyboardUsable; },
            .keyboardExplanation = [this] { return keyboardExplanation; },
            .executablePath = "/usr/bin/tovik-record",
            .homeDirectory = "/home/ada",
        };
    }

    MicrophoneStatus microphoneStatus = MicrophoneStatus::authorized;
    std::string microphoneExplanation;
    std::string speechExplanation;
    bool hasServer = false;
    std::optional<bool> consent;
    bool keyboardUsable = true;
    std::string keyboardExplanation;
    ManualTime time;
    FakeAlert alert;
    std::optional<LinuxAuthorization> authorization{std::in_place, time, alert, answers()};
    std::vector<int> statuses;
    std::vector<bool> grants;
};

// ----------------------------------------------------------------- speech that leaves the machine

TEST_F(LinuxAuthorizationTest, untilTheUserHasSaidWhetherAServerMayHear_speechIsNotDetermined) {
    hasServer = true;
    EXPECT_EQ(authorization->speechStatus(), SpeechStatus::notDetermined);
    consent = true;
    EXPECT_EQ(authorization->speechStatus(), SpeechStatus::authorized);
    consent = false;
    EXPECT_EQ(authorization->speechStatus(), SpeechStatus::denied);
}

TEST_F(LinuxAuthorizationTest, whenTheUserAllowsTheServer_remembersItAndAsksNoMore) {
    hasServer = true;
    alert.answerNext(0);
    authorization->requestSpeechAuthorization(
        [this](SpeechStatus status) { statuses.push_back(static_cast<int>(status)); });
    time.runPending();
    ASSERT_THAT(alert.questions(), SizeIs(1));
    EXPECT_EQ(alert.questions().front().informativeText, "It would go to a server.");
    EXPECT_THAT(alert.questions().front().buttons, ElementsAre("Allow", "Don't Allow"));
    EXPECT_THAT(statuses, ElementsAre(3));
    EXPECT_EQ(consent, true);
}

TEST_F(LinuxAuthorizationTest, whenTheUserDoesNotAllowTheServer_speechIsDenied) {
    hasServer = true;
    alert.answerNext(1);
    authorization->requestSpeechAuthorization(
        [this](SpeechStatus status) { statuses.push_back(static_cast<int>(status)); });
    time.runPending();
    EXPECT_THAT(statuses, ElementsAre(1));
    EXPECT_EQ(consent, false);
    EXPECT_THAT(alert.questions(), SizeIs(1));
}

TEST_F(LinuxAuthorizationTest, whenTheQuestionAboutTheServerIsClosed_nothingIsDecided) {
    hasServer = true;
    alert.answerNext(-1);
    authorization->requestSpeechAuthorization(
        [this](SpeechStatus status) { statuses.push_back(static_cast<int>(status)); });
    time.runPending();
    EXPECT_THAT(statuses, ElementsAre(0));
    EXPECT_EQ(consent, std::nullopt);
}

// ------------------------------------------------------------------------------- how it stands

TEST_F(LinuxAuthorizationTest, theMicrophoneStandsAsTheSoundServerSays) {
    for (const auto status : {MicrophoneStatus::restricted, MicrophoneStatus::denied,
                              MicrophoneStatus::authorized, MicrophoneStatus::unknown}) {
        microphoneStatus = status;
        EXPECT_EQ(authorization->microphoneStatus(), status);
    }
}

TEST_F(LinuxAuthorizationTest, speechIsAuthorizedWhileAnEngineHasAModelAndNotDeterminedOtherwise) {
    EXPECT_EQ(authorization->speechStatus(), SpeechStatus::authorized);
    speechExplanation = kNoModel;
    EXPECT_EQ(authorization->speechStatus(), SpeechStatus::notDetermined);
}

TEST_F(LinuxAuthorizationTest, theProcessIsTrustedWhileTheKeyboardIsUsable) {
    EXPECT_TRUE(authorization->isProcessTrusted());
    keyboardUsable = false;
    EXPECT_FALSE(authorization->isProcessTrusted());
}

TEST_F(LinuxAuthorizationTest, aCaveatAloneDoesNotTakeTrustAway) {
    keyboardExplanation = "Only windows that use X.";
    EXPECT_TRUE(authorization->isProcessTrusted());
}

TEST_F(LinuxAuthorizationTest, theBundleIsTheProgramsFile) {
    EXPECT_EQ(authorization->bundlePath(), "/usr/bin/tovik-record");
    EXPECT_EQ(authorization->homeDirectory(), "/home/ada");
}

// --------------------------------------------------------------------------------- the requests

struct AskedRow {
    const char* name;
    bool isRefused;
    MicrophoneStatus statusAfterwards;
    const char* explanation;
    std::size_t questions;
    bool isGranted;
};

class WhereSomebodyDecides : public LinuxAuthorizationTest, public testing::WithParamInterface<AskedRow> {};

TEST_P(WhereSomebodyDecides, theRequestWaitsForThatAnswer) {
    std::function<void(bool)> answered;
    auto asking = answers();
    asking.askForMicrophone = [&](std::function<void(bool)> handler) { answered = std::move(handler); };
    authorization.emplace(time, alert, asking);
    alert.answerNext(kClose);
    authorization->requestMicrophoneAccess([this](bool granted) { grants.push_back(granted); });
    time.runPending();
    EXPECT_THAT(grants, IsEmpty());
    microphoneStatus = GetParam().statusAfterwards;
    microphoneExplanation = GetParam().explanation;
    ASSERT_TRUE(answered);
    answered(GetParam().isRefused);
    time.runPending();
    EXPECT_THAT(alert.questions(), SizeIs(GetParam().questions));
    EXPECT_THAT(grants, ElementsAre(GetParam().isGranted));
}

INSTANTIATE_TEST_SUITE_P(
    Answers, WhereSomebodyDecides,
    testing::Values(AskedRow{"granted", false, MicrophoneStatus::authorized, "", 0, true},
                    AskedRow{"refusedByTheUser", true, MicrophoneStatus::denied, "You said no.", 0, false},
                    AskedRow{"allowedButTheServerIsAway", false, MicrophoneStatus::unknown, "No server.", 1,
                             false}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(LinuxAuthorizationTest, whenSpeechIsMissing_theRequestReturnsAndThenSaysWhatToInstall) {
    speechExplanation = kNoModel;
    alert.answerNext(kClose);
    authorization->requestSpeechAuthorization(
        [this](SpeechStatus status) { statuses.push_back(static_cast<int>(status)); });
    EXPECT_THAT(alert.questions(), IsEmpty());
    time.runPending();
    EXPECT_THAT(alert.questions(),
                ElementsAre(FakeAlert::Question{
                    "Tovik Record cannot understand speech yet", kNoModel, {"Check Again", "Close"}}));
    EXPECT_THAT(statuses, ElementsAre(0));
}

TEST_F(LinuxAuthorizationTest, whenTheUserInstalledThePackage_checkingAgainGrants) {
    speechExplanation = kNoModel;
    alert.onShown = [this] { speechExplanation.clear(); };
    alert.answerNext(kCheckAgain);
    authorization->requestSpeechAuthorization(
        [this](SpeechStatus status) { statuses.push_back(static_cast<int>(status)); });
    time.runPending();
    EXPECT_THAT(alert.questions(), SizeIs(1));
    EXPECT_THAT(statuses, ElementsAre(3));
}

TEST_F(LinuxAuthorizationTest, whenCheckingAgainFindsNothingNew_theQuestionComesBack) {
    speechExplanation = kNoModel;
    alert.answerNext(kCheckAgain);
    alert.answerNext(kCheckAgain);
    alert.answerNext(kClose);
    authorization->requestSpeechAuthorization(
        [this](SpeechStatus status) { statuses.push_back(static_cast<int>(status)); });
    time.runPending();
    EXPECT_THAT(alert.questions(), SizeIs(3));
    EXPECT_THAT(statuses, ElementsAre(0));
}

TEST_F(LinuxAuthorizationTest, whenTheUserInstalledItAndCloses_thatCountsToo) {
    speechExplanation = kNoModel;
    alert.onShown = [this] { speechExplanation.clear(); };
    alert.answerNext(kClose);
    authorization->requestSpeechAuthorization(
        [this](SpeechStatus status) { statuses.push_back(static_cast<int>(status)); });
    time.runPending();
    EXPECT_THAT(statuses, ElementsAre(3));
}

TEST_F(LinuxAuthorizationTest, whenTheQuestionIsClosedWithoutAButton_theAnswerStillComes) {
    speechExplanation = kNoModel;
    authorization->requestSpeechAuthorization(
        [this](SpeechStatus status) { statuses.push_back(static_cast<int>(status)); });
    time.runPending();
    EXPECT_THAT(statuses, ElementsAre(0));
}

TEST_F(LinuxAuthorizationTest, whenNothingIsMissingAnyMore_answersWithoutAQuestion) {
    authorization->requestSpeechAuthorization(
        [this](SpeechStatus status) { statuses.push_back(static_cast<int>(status)); });
    authorization->requestMicrophoneAccess([this](bool granted) { grants.push_back(granted); });
    time.runPending();
    EXPECT_THAT(alert.questions(), IsEmpty());
    EXPECT_THAT(statuses, ElementsAre(3));
    EXPECT_THAT(grants, ElementsAre(true));
}

TEST_F(LinuxAuthorizationTest, whenAskedAgainBeforeTheAnswer_oneQuestionAnswersAll) {
    speechExplanation = kNoModel;
    const auto ask = [this] {
        authorization->requestSpeechAuthorization(
            [this](SpeechStatus status) { statuses.push_back(static_cast<int>(status)); });
    };
    alert.onShown = ask;
    alert.answerNext(kClose);
    ask();
    ask();
    time.runPending();
    EXPECT_THAT(alert.questions(), SizeIs(1));
    EXPECT_THAT(statuses, ElementsAre(0, 0, 0));
}

TEST_F(LinuxAuthorizationTest, whenAskedAgainAfterTheAnswer_asksAnew) {
    speechExplanation = kNoModel;
    for (int round = 0; round < 2; ++round) {
        authorization->requestSpeechAuthorization(
            [this](SpeechStatus status) { statuses.push_back(static_cast<int>(status)); });
        time.runPending();
    }
    EXPECT_THAT(alert.questions(), SizeIs(2));
    EXPECT_THAT(statuses, ElementsAre(0, 0));
}

TEST_F(LinuxAuthorizationTest, whenAnAnswerLeadsToTheNextRequest_thatIsAskedToo) {
    speechExplanation = kNoModel;
    authorization->requestSpeechAuthorization([this](SpeechStatus) {
        authorization->requestSpeechAuthorization(
            [this](SpeechStatus status) { statuses.push_back(static_cast<int>(status)); });
    });
    time.runPending();
    EXPECT_THAT(alert.questions(), SizeIs(2));
    EXPECT_THAT(statuses, ElementsAre(0));
}

TEST_F(LinuxAuthorizationTest, whenTheMicrophoneIsMissing_saysWhatIsWrongAndAnswersNo) {
    microphoneStatus = MicrophoneStatus::restricted;
    microphoneExplanation = "No microphone was found.";
    alert.answerNext(kClose);
    authorization->requestMicrophoneAccess([this](bool granted) { grants.push_back(granted); });
    time.runPending();
    EXPECT_THAT(alert.questions(),
                ElementsAre(FakeAlert::Question{
                    "Tovik Record cannot hear you", "No microphone was found.", {"Check Again", "Close"}}));
    EXPECT_THAT(grants, ElementsAre(false));
}

TEST_F(LinuxAuthorizationTest, whenMicrophoneAndSpeechAreBothAsked_eachHasItsOwnQuestion) {
    microphoneStatus = MicrophoneStatus::restricted;
    microphoneExplanation = "No microphone was found.";
    speechExplanation = kNoModel;
    authorization->requestMicrophoneAccess([this](bool granted) { grants.push_back(granted); });
    authorization->requestSpeechAuthorization(
        [this](SpeechStatus status) { statuses.push_back(static_cast<int>(status)); });
    time.runPending();
    EXPECT_THAT(alert.questions(), SizeIs(2));
}

// ------------------------------------------------------------------------------------ the prompt

TEST_F(LinuxAuthorizationTest, whenTheKeyboardIsNotUsable_thePromptSaysWhyAfterReturning) {
    keyboardUsable = false;
    keyboardExplanation = "This X server lacks the XTEST extension.";
    EXPECT_FALSE(authorization->isProcessTrustedWithPrompt());
    EXPECT_THAT(alert.questions(), IsEmpty());
    time.runPending();
    EXPECT_THAT(alert.questions(),
                ElementsAre(FakeAlert::Question{"Tovik Record cannot use the keyboard here",
                                                "This X server lacks the XTEST extension.",
                                                {"Check Again", "Close"}}));
}

TEST_F(LinuxAuthorizationTest, whenTheKeyboardIsUsable_thePromptStaysAway) {
    EXPECT_TRUE(authorization->isProcessTrustedWithPrompt());
    time.runPending();
    EXPECT_THAT(alert.questions(), IsEmpty());
}

TEST_F(LinuxAuthorizationTest, whenTheProgramEndsBeforeTheQuestion_nothingIsShown) {
    speechExplanation = kNoModel;
    authorization->requestSpeechAuthorization(
        [this](SpeechStatus status) { statuses.push_back(static_cast<int>(status)); });
    authorization.reset();
    time.runPending();
    EXPECT_THAT(alert.questions(), IsEmpty());
    EXPECT_THAT(statuses, IsEmpty());
}

} // namespace
} // namespace tovik::test
