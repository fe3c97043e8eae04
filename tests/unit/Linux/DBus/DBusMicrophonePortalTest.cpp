// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/DBus/SandboxedMicrophone.h"
#include "support/EventLoop.h"
#include "support/FakeDesktopPortal.h"
#include "support/SessionBus.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <memory>
#include <optional>
#include <utility>

namespace tovik::test {
namespace {

using testing::SizeIs;
using testing::StartsWith;
using Verdict = MicrophonePortal::Verdict;

class BusEnvironment : public testing::Environment {
public:
    void SetUp() override { bus = std::make_unique<SessionBus>(); }
    void TearDown() override { bus.reset(); }

    std::unique_ptr<SessionBus> bus;
};

/// GoogleTest owns it.
auto* const environment = testing::AddGlobalTestEnvironment(new BusEnvironment);

class DBusMicrophonePortalTest : public testing::Test {
protected:
    MicrophonePortal::Handler keep() {
        return [this](const MicrophonePortal::Answer& answer) {
            EXPECT_FALSE(answer_) << "one answer each";
            answer_ = answer;
        };
    }
    MicrophonePortal::Answer look() {
        portal.look(keep());
        EXPECT_FALSE(answer_) << "answers come later";
        return wait();
    }
    MicrophonePortal::Answer wait() {
        EXPECT_TRUE(runUntil([this] { return answer_.has_value(); }));
        return std::exchange(answer_, std::nullopt).value_or(MicrophonePortal::Answer{});
    }
    void askUntilTheUserIsAsked() {
        const int before = desktop->dialogs();
        portal.ask(keep());
        ASSERT_TRUE(runUntil([&] { return desktop->dialogs() == before + 1; }));
    }

    std::unique_ptr<FakeDesktopPortal> desktop = std::make_unique<FakeDesktopPortal>();
    DBusMicrophonePortal portal{[] { return QDBusConnection::sessionBus(); }};
    std::optional<MicrophonePortal::Answer> answer_;
};

struct ErrorRow {
    const char* title;
    const char* name;
    const char* message;
    Verdict expected;
};

class PortalErrors : public DBusMicrophonePortalTest, public testing::WithParamInterface<ErrorRow> {};

TEST_P(PortalErrors, meanTheSameToALookAndToAQuestion) {
    const auto& row = GetParam();
    desktop->refuse(row.name, row.message);
    const auto looked = look();
    EXPECT_EQ(looked.verdict, row.expected);
    EXPECT_EQ(looked.reason, std::string(row.name) + ": " + row.message);
    portal.ask(keep());
    EXPECT_EQ(wait().verdict, row.expected);
    EXPECT_EQ(desktop->dialogs(), 0);
}

// The sentences of xdg-desktop-portal 1.16.
INSTANTIATE_TEST_SUITE_P(
    Errors, PortalErrors,
    testing::Values(ErrorRow{"notForPrograms", "org.freedesktop.portal.Error.NotAllowed",
                             "This call is not available inside the sandbox", Verdict::leavesItToTheServer},
                    ErrorRow{"switchedOff", "org.freedesktop.portal.Error.NotAllowed",
                             "Microphone access disabled", Verdict::switchedOff},
                    ErrorRow{"noSuchInterface", "org.freedesktop.DBus.Error.UnknownMethod",
                             "No such interface “org.freedesktop.portal.Device”",
                             Verdict::leavesItToTheServer},
                    ErrorRow{"turnedAwayByTheBus", "org.freedesktop.DBus.Error.AccessDenied", "Denied",
                             Verdict::leavesItToTheServer},
                    ErrorRow{"noSuchProcess", "org.freedesktop.portal.Error.InvalidArgument",
                             "Invalid pid requested", Verdict::undecided}),
    [](const auto& row) { return std::string(row.param.title); });

TEST_F(DBusMicrophonePortalTest, withoutAPortal_leavesItToTheServer) {
    desktop.reset();
    const auto looked = look();
    EXPECT_EQ(looked.verdict, Verdict::leavesItToTheServer);
    EXPECT_THAT(looked.reason, StartsWith("org.freedesktop.DBus.Error."));
}

TEST_F(DBusMicrophonePortalTest, withoutABus_leavesItToTheServer) {
    DBusMicrophonePortal lonely([] { return QDBusConnection("no connection of this name"); });
    lonely.look(keep());
    EXPECT_EQ(wait().verdict, Verdict::leavesItToTheServer);
    lonely.ask(keep());
    EXPECT_EQ(wait().verdict, Verdict::leavesItToTheServer);
}

TEST_F(DBusMicrophonePortalTest, whereThePortalDecides_aLookSaysSoAndAsksNobody) {
    EXPECT_EQ(look().verdict, Verdict::undecided);
    EXPECT_EQ(desktop->dialogs(), 0);
}

TEST_F(DBusMicrophonePortalTest, asksForTheMicrophoneOfThisProcess) {
    askUntilTheUserIsAsked();
    ASSERT_THAT(desktop->calls(), SizeIs(1));
    EXPECT_EQ(desktop->calls().front().processIdentifier, static_cast<unsigned>(getpid()));
    EXPECT_EQ(desktop->calls().front().devices, QStringList{"microphone"});
    desktop->answer(0);
    EXPECT_EQ(wait().verdict, Verdict::granted);
}

TEST_F(DBusMicrophonePortalTest, everyOtherResponseIsANo) {
    for (const unsigned response : {1U, 2U}) {
        askUntilTheUserIsAsked();
        desktop->answer(response);
        EXPECT_EQ(wait().verdict, Verdict::denied) << response;
    }
}

TEST_F(DBusMicrophonePortalTest, hearsAnAnswerThatIsFasterThanTheReply) {
    desktop->answerAtOnce(0);
    askUntilTheUserIsAsked();
    EXPECT_EQ(wait().verdict, Verdict::granted);
}

TEST_F(DBusMicrophonePortalTest, hearsTheAnswerOnAPathThatThePortalChose) {
    desktop->chooseOwnPaths();
    askUntilTheUserIsAsked();
    // The reply is there before anything that is sent after it, such as the answer to this look.
    portal.look([this](const auto&) { desktop->answer(0); });
    EXPECT_EQ(wait().verdict, Verdict::granted);
}

TEST_F(DBusMicrophonePortalTest, whenThePortalEndsMeanwhile_theQuestionStaysOpen) {
    askUntilTheUserIsAsked();
    desktop.reset();
    EXPECT_EQ(wait().verdict, Verdict::undecided);
}

TEST_F(DBusMicrophonePortalTest, afterTheFirstAnswer_othersAreIgnored) {
    askUntilTheUserIsAsked();
    desktop->answer(1);
    desktop->answer(0);
    EXPECT_EQ(wait().verdict, Verdict::denied);
    EXPECT_EQ(look().verdict, Verdict::undecided);
}

} // namespace
} // namespace tovik::test
