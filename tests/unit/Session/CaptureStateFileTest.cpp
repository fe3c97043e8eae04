// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/CaptureStateFile.h"

#include "support/FakeFiles.h"
#include "support/ManualTime.h"
#include "support/RecordingLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tovik {
namespace {

constexpr auto path = "/home/ada/.local/share/Tovik/capture-state.json";

class CaptureStateFileTest : public testing::Test {
protected:
    test::FakeFiles files;
    test::ManualTime time;
    test::RecordingLog log;
    CaptureStateFile state{files, time, log, "/home/ada/.local/share", 4711};
};

TEST_F(CaptureStateFileTest, liesInTheFolderTovikOfTheUsersData) {
    EXPECT_EQ(state.tovikCaptureStateURL(), path);
}

TEST_F(CaptureStateFileTest, whileARecordingRuns_holdsTheFiveMembersSortedAndPrettyPrinted) {
    const auto startedAt = time.now();
    time.advance(Seconds(2.9));
    state.writeTovikCaptureState(true, startedAt);
    EXPECT_EQ(files.contentOf(path), R"({
  "active": true,
  "app": "tovik-record",
  "pid": 4711,
  "startedAt": "2025-03-01T14:05:09Z",
  "updatedAt": "2025-03-01T14:05:11Z"
})");
}

TEST_F(CaptureStateFileTest, withoutAStartTime_thePresentCounts) {
    state.writeTovikCaptureState(true);
    EXPECT_THAT(*files.contentOf(path), testing::HasSubstr(R"("startedAt": "2025-03-01T14:05:09Z")"));
}

TEST_F(CaptureStateFileTest, whenTheRecordingEnds_theFileIsGone) {
    state.writeTovikCaptureState(true, time.now());
    state.writeTovikCaptureState(false);
    EXPECT_FALSE(files.exists(path));
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
    EXPECT_THAT(*files.contentOf(path), testing::HasSubstr(R"("updatedAt": "2025-03-01T14:06:09Z")"));
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

} // namespace
} // namespace tovik
