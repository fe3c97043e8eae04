// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/LinuxAuthorization.h"
#include "support/FakeAuthorization.h"
#include "support/FakeUserInterface.h"
#include "support/ManualTime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace tovik::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kNotDetermined = 0;
constexpr int kAuthorized = 3;

/// A desktop whose grants a test decides, whichever implementation tells of them.
class Desktop {
public:
    virtual ~Desktop() = default;
    virtual Authorization& authorization() = 0;
    /// From the next question on.
    virtual void allowSpeech(bool allowed) = 0;
    virtual void allowKeyboard(bool allowed) = 0;
    /// The user sees whatever is asked and gives up on it, or grants it.
    virtual void userAnswers(bool grants) = 0;
};

class FakeDesktop : public Desktop {
public:
    Authorization& authorization() override { return fake_; }
    void allowSpeech(bool allowed) override { fake_.setSpeechStatus(allowed ? kAuthorized : kNotDetermined); }
    void allowKeyboard(bool allowed) override { fake_.setTrusted(allowed); }
    void userAnswers(bool grants) override {
        while (fake_.openSpeechRequests() > 0) {
            fake_.answerSpeechRequest(grants ? kAuthorized : kNotDetermined);
        }
    }

private:
    FakeAuthorization fake_;
};

class LinuxDesktop : public Desktop {
public:
    Authorization& authorization() override { return linux_; }
    void allowSpeech(bool allowed) override { hasModel_ = allowed; }
    void allowKeyboard(bool allowed) override { keyboardUsable_ = allowed; }
    void userAnswers(bool grants) override {
        alert_.onShown = [this, grants] { hasModel_ = grants; };
        time_.runPending();
    }

private:
    bool hasModel_ = true;
    bool keyboardUsable_ = true;
    ManualTime time_;
    FakeAlert alert_;
    LinuxAuthorization linux_{
        time_,
        alert_,
        {
            .microphoneStatus = [] { return MicrophoneStatus::authorized; },
            .microphoneExplanation = [] { return std::string(); },
            .speechExplanation = [this] { return hasModel_ ? std::string() : "Install a model."; },
            .isKeyboardUsable = [this] { return keyboardUsable_; },
            .keyboardExplanation = [this] { return keyboardUsable_ ? std::string() : "No keys here."; },
            .executablePath = "/usr/bin/tovik-record",
            .homeDirectory = "/home/ada",
        }};
};

struct DesktopRow {
    const char* name;
    std::unique_ptr<Desktop> (*make)();
};

std::ostream& operator<<(std::ostream& out, const DesktopRow& row) {
    return out << row.name;
}

class AuthorizationContract : public testing::TestWithParam<DesktopRow> {
protected:
    Authorization& authorization() { return desktop->authorization(); }
    void requestSpeech() {
        authorization().requestSpeechAuthorization(
            [this](SpeechStatus status) { answers.push_back(status); });
    }

    const std::unique_ptr<Desktop> desktop = GetParam().make();
    std::vector<SpeechStatus> answers;
};

TEST_P(AuthorizationContract, whenSpeechIsAllowed_itsStatusIsAuthorized) {
    EXPECT_EQ(authorization().speechStatus(), SpeechStatus::authorized);
    desktop->allowSpeech(false);
    EXPECT_NE(authorization().speechStatus(), SpeechStatus::authorized);
}

TEST_P(AuthorizationContract, whenSpeechIsAsked_returnsBeforeTheUserAnswers) {
    desktop->allowSpeech(false);
    requestSpeech();
    EXPECT_THAT(answers, IsEmpty());
}

TEST_P(AuthorizationContract, whenTheUserGrants_theAnswerIsTheStatusThatHoldsThen) {
    desktop->allowSpeech(false);
    requestSpeech();
    desktop->userAnswers(true);
    EXPECT_THAT(answers, ElementsAre(SpeechStatus::authorized));
    EXPECT_EQ(authorization().speechStatus(), SpeechStatus::authorized);
}

TEST_P(AuthorizationContract, whenTheUserDoesNotGrant_theAnswerIsTheStatusThatHoldsThen) {
    desktop->allowSpeech(false);
    requestSpeech();
    desktop->userAnswers(false);
    ASSERT_EQ(answers.size(), 1U);
    EXPECT_NE(answers[0], SpeechStatus::authorized);
    EXPECT_EQ(authorization().speechStatus(), answers[0]);
}

TEST_P(AuthorizationContract, whenAskedSeveralTimes_everyRequestHasOneAnswer) {
    desktop->allowSpeech(false);
    requestSpeech();
    requestSpeech();
    requestSpeech();
    desktop->userAnswers(true);
    desktop->userAnswers(true);
    EXPECT_THAT(answers,
                ElementsAre(SpeechStatus::authorized, SpeechStatus::authorized, SpeechStatus::authorized));
}

TEST_P(AuthorizationContract, thePromptAnswersLikeTheQuestionWithoutOne) {
    EXPECT_TRUE(authorization().isProcessTrusted());
    EXPECT_TRUE(authorization().isProcessTrustedWithPrompt());
    desktop->allowKeyboard(false);
    EXPECT_FALSE(authorization().isProcessTrusted());
    EXPECT_FALSE(authorization().isProcessTrustedWithPrompt());
}

TEST_P(AuthorizationContract, placesAreAbsoluteAndEndWithoutASlash) {
    for (const auto& path : {authorization().bundlePath(), authorization().homeDirectory()}) {
        EXPECT_TRUE(path.starts_with('/')) << path;
        EXPECT_FALSE(path.ends_with('/')) << path;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Desktops, AuthorizationContract,
    testing::Values(
        DesktopRow{"Fake", []() -> std::unique_ptr<Desktop> { return std::make_unique<FakeDesktop>(); }},
        DesktopRow{"Linux", []() -> std::unique_ptr<Desktop> { return std::make_unique<LinuxDesktop>(); }}),
    [](const auto& row) { return std::string(row.param.name); });

} // namespace
} // namespace tovik::test
