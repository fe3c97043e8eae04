// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/TranscriptDelivery.h"
#include "support/FakeWorkspace.h"

#include <gtest/gtest.h>

namespace tovik {
namespace {

const RunningApplication editor{"org.editor", 100, "Editor", 7};
const RunningApplication mail{"org.mail", 200, "Mail", 8};

class TargetTrackerTest : public testing::Test {
protected:
    TargetTrackerTest() {
        workspace.launch(editor);
        workspace.launch(mail);
    }

    test::FakeWorkspace workspace;
    TargetTracker tracker{workspace};
};

TEST_F(TargetTrackerTest, whenAnotherProgramIsInFrontAtLaunch_remembersIt) {
    workspace.bringToFront(editor);
    tracker.startFollowing();
    EXPECT_EQ(tracker.lastFocusedTargetApp(), editor);
}

TEST_F(TargetTrackerTest, whenThisProgramIsInFrontAtLaunch_knowsNoTargetUntilAnotherIsActivated) {
    workspace.bringToFront(workspace.current);
    tracker.startFollowing();
    EXPECT_EQ(tracker.lastFocusedTargetApp(), std::nullopt);

    workspace.bringToFront(mail);
    EXPECT_EQ(tracker.lastFocusedTargetApp(), mail);
}

TEST_F(TargetTrackerTest, whenThisProgramIsActivated_keepsTheLastOtherOne) {
    tracker.startFollowing();
    workspace.bringToFront(mail);
    workspace.bringToFront(workspace.current);
    EXPECT_EQ(tracker.lastFocusedTargetApp(), mail);
}

TEST_F(TargetTrackerTest, whenAnotherProgramIsInFront_itIsTheTargetAndTheLastFocused) {
    tracker.startFollowing();
    workspace.bringToFront(editor);
    tracker.chooseTarget();
    EXPECT_EQ(tracker.targetApp(), editor);
    EXPECT_EQ(tracker.lastFocusedTargetApp(), editor);
}

TEST_F(TargetTrackerTest, whenThisProgramIsInFront_theLastFocusedIsTheTarget) {
    tracker.startFollowing();
    workspace.bringToFront(mail);
    workspace.bringToFront(workspace.current);
    tracker.chooseTarget();
    EXPECT_EQ(tracker.targetApp(), mail);
}

TEST_F(TargetTrackerTest, whenNothingIsInFront_theLastFocusedIsTheTarget) {
    tracker.startFollowing();
    workspace.bringToFront(mail);
    workspace.clearFront();
    tracker.chooseTarget();
    EXPECT_EQ(tracker.targetApp(), mail);
}

TEST_F(TargetTrackerTest, whenThereIsNoCandidate_replacesTheOldTargetByNone) {
    workspace.bringToFront(editor);
    tracker.startFollowing();
    tracker.chooseTarget();
    workspace.quit(editor);
    tracker.chooseTarget();
    EXPECT_EQ(tracker.targetApp(), std::nullopt);
    EXPECT_EQ(tracker.target(), std::nullopt);
}

TEST_F(TargetTrackerTest, whenTheTargetHasQuit_itIsStillNamedButNoLongerTheLastFocused) {
    workspace.bringToFront(editor);
    tracker.startFollowing();
    tracker.chooseTarget();
    workspace.quit(editor);
    EXPECT_EQ(tracker.targetApp(), editor);
    EXPECT_EQ(tracker.target(), editor);
    EXPECT_EQ(tracker.lastFocusedTargetApp(), std::nullopt);
}

TEST_F(TargetTrackerTest, beforeAnyRecording_theTargetIsTheLastFocused) {
    workspace.bringToFront(editor);
    tracker.startFollowing();
    EXPECT_EQ(tracker.targetApp(), std::nullopt);
    EXPECT_EQ(tracker.target(), editor);
}

struct IdentityRow {
    const char* name;
    std::optional<std::string> bundleIdentifier;
    std::int64_t processIdentifier;
    bool isThisProgram;
};

class TargetTrackerIdentity : public testing::TestWithParam<IdentityRow> {};

TEST_P(TargetTrackerIdentity, followsBundleIdentifierThenProcess) {
    test::FakeWorkspace workspace;
    const TargetTracker tracker(workspace);
    const RunningApplication other{GetParam().bundleIdentifier, GetParam().processIdentifier, "Name", 0};
    EXPECT_EQ(tracker.isTovikVoice(other), GetParam().isThisProgram);
}

INSTANTIATE_TEST_SUITE_P(Rows, TargetTrackerIdentity,
                         testing::Values(IdentityRow{"sameIdentifierOtherProcess", "tovik-record", 1, true},
                                         IdentityRow{"otherIdentifierSameProcess", "org.editor", 4242, true},
                                         IdentityRow{"otherIdentifierOtherProcess", "org.editor", 1, false},
                                         IdentityRow{"noIdentifierSameProcess", std::nullopt, 4242, true},
                                         IdentityRow{"noIdentifierOtherProcess", std::nullopt, 1, false}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(TargetTrackerWithoutOwnIdentifier, whenBothIdentifiersAreAbsent_takesTheOtherForItself) {
    test::FakeWorkspace workspace;
    workspace.current.bundleIdentifier.reset();
    const TargetTracker tracker(workspace);
    EXPECT_TRUE(tracker.isTovikVoice({std::nullopt, 1, "Name", 0}));
}

} // namespace
} // namespace tovik
