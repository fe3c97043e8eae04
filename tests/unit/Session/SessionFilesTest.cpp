// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/SessionFiles.h"

#include "support/FakeFiles.h"
#include "support/ManualTime.h"
#include "support/RecordingLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tovik {
namespace {

// The capture state.

constexpr auto kStateFile = "/home/ada/.local/share/Tovik/capture-state.json";

class CaptureStateFileTest : public testing::Test {
protected:
    test::FakeFiles files;
    test::ManualTime time;
    test::RecordingLog log;
    CaptureStateFile state{files, time, log, "/home/ada/.local/share", 4711};
};

TEST_F(CaptureStateFileTest, liesInTheFolderTovikOfTheUsersData) {
    EXPECT_EQ(state.tovikCaptureStateURL(), kStateFile);
}

TEST_F(CaptureStateFileTest, whileARecordingRuns_holdsTheFiveMembersSortedAndPrettyPrinted) {
    const auto startedAt = time.now();
    time.advance(Seconds(2.9));
    state.writeTovikCaptureState(true, startedAt);
    EXPECT_EQ(files.contentOf(kStateFile), R"({
  "active": true,
  "app": "tovik-record",
  "pid": 4711,
  "startedAt": "2025-03-01T14:05:09Z",
  "updatedAt": "2025-03-01T14:05:11Z"
})");
}

TEST_F(CaptureStateFileTest, withoutAStartTime_thePresentCounts) {
    state.writeTovikCaptureState(true);
    EXPECT_THAT(*files.contentOf(kStateFile), testing::HasSubstr(R"("startedAt": "2025-03-01T14:05:09Z")"));
}

TEST_F(CaptureStateFileTest, whenTheRecordingEnds_theFileIsGone) {
    state.writeTovikCaptureState(true, time.now());
    state.writeTovikCaptureState(false);
    EXPECT_FALSE(files.exists(kStateFile));
    EXPECT_TRUE(log.printed().empty());
}

TEST_F(CaptureStateFileTest, whenItWasNeverWritten_removingItSaysNothing) {
    state.writeTovikCaptureState(false);
    EXPECT_TRUE(log.printed().empty());
    EXPECT_TRUE(log.logged().empty());
}

TEST_F(CaptureStateFileTest, aSecondWrite_replacesTheFirst) {
    const auto startedAt = time.now();
    state.writeTovikCaptureState(true, startedAt);
    time.advance(Seconds(60));
    state.writeTovikCaptureState(true, startedAt);
    EXPECT_THAT(*files.contentOf(kStateFile), testing::HasSubstr(R"("updatedAt": "2025-03-01T14:06:09Z")"));
}

TEST_F(CaptureStateFileTest, whenTheDiskRefuses_saysSoAndGoesOn) {
    files.fail(Error{"POSIX", 28, "No space left on device"});
    state.writeTovikCaptureState(true, time.now());
    EXPECT_EQ(log.printed(), std::vector<std::string>{
                                 "[TovikVoice] Failed to write capture state: No space left on device"});
}

TEST_F(CaptureStateFileTest, whenTheFolderCannotBeMadeAtTheEnd_saysSo) {
    files.fail(Error{"POSIX", 30, "Read-only file system"});
    state.writeTovikCaptureState(false);
    EXPECT_EQ(log.printed(),
              std::vector<std::string>{"[TovikVoice] Failed to write capture state: Read-only file system"});
}

// The trace of the launch.

constexpr auto kDebugLog = "/home/ada/.local/state/tovik-record/tovik_record_debug.log";

class DebugLogTest : public testing::Test {
protected:
    test::FakeFiles files;
    test::ManualTime time;
    test::RecordingLog log;
    DebugLog debugLog{files, time, log, kDebugLog};
};

TEST_F(DebugLogTest, firstMessage_makesTheFileWithExactlyOneLine) {
    debugLog.debugLog("applicationDidFinishLaunching started");
    EXPECT_EQ(files.contentOf(kDebugLog),
              "[2025-03-01 14:05:09 +0000] applicationDidFinishLaunching started\n");
}

TEST_F(DebugLogTest, furtherMessages_areAppended) {
    debugLog.debugLog("one");
    time.advance(Seconds(1));
    debugLog.debugLog("two");
    EXPECT_EQ(files.contentOf(kDebugLog),
              "[2025-03-01 14:05:09 +0000] one\n[2025-03-01 14:05:10 +0000] two\n");
}

TEST_F(DebugLogTest, everyMessage_goesToTheSystemLogToo) {
    debugLog.debugLog("Status item created");
    EXPECT_EQ(log.logged(), std::vector<std::string>{"[TovikVoice] Status item created"});
    EXPECT_TRUE(log.printed().empty());
}

TEST_F(DebugLogTest, whenTheFileCannotBeWritten_theSystemLogHasTheLineAndNothingElseIsSaid) {
    files.fail(Error{"POSIX", 30, "Read-only file system"});
    debugLog.debugLog("one");
    EXPECT_EQ(log.logged(), std::vector<std::string>{"[TovikVoice] one"});
    EXPECT_TRUE(log.printed().empty());
}

TEST_F(DebugLogTest, afterAFailureThatPasses_theFileHasEveryLine) {
    debugLog.debugLog("one");
    files.fail(Error{"POSIX", 28, "No space left on device"});
    debugLog.debugLog("two");
    files.fail(std::nullopt);
    debugLog.debugLog("three");
    EXPECT_EQ(files.contentOf(kDebugLog), "[2025-03-01 14:05:09 +0000] one\n[2025-03-01 14:05:09 +0000] two\n"
                                          "[2025-03-01 14:05:09 +0000] three\n");
}

TEST_F(DebugLogTest, whenTheFileIsThereButCannotBeAppendedTo_itKeepsWhatItHolds) {
    files.addFile(kDebugLog, "an earlier launch\n");
    files.failToAppend(Error{"POSIX", 5, "Input/output error"});
    debugLog.debugLog("one");
    EXPECT_EQ(files.contentOf(kDebugLog), "an earlier launch\n");
    files.failToAppend(std::nullopt);
    debugLog.debugLog("two");
    EXPECT_EQ(files.contentOf(kDebugLog),
              "an earlier launch\n[2025-03-01 14:05:09 +0000] one\n[2025-03-01 14:05:09 +0000] two\n");
}

TEST_F(DebugLogTest, whenTheFolderIsRemovedInBetween_theNextLineMakesANewFile) {
    debugLog.debugLog("one");
    ASSERT_TRUE(files.remove(kDebugLog));
    debugLog.debugLog("two");
    EXPECT_EQ(files.contentOf(kDebugLog), "[2025-03-01 14:05:09 +0000] two\n");
}

TEST_F(DebugLogTest, whenTheMessageIsNoUtf8_theFileIsLeftAlone) {
    debugLog.debugLog("\xff\xfe");
    EXPECT_FALSE(files.exists(kDebugLog));
    EXPECT_EQ(log.logged().size(), 1u);
}

} // namespace
} // namespace tovik
