// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/DebugLog.h"

#include "support/FakeFiles.h"
#include "support/ManualTime.h"
#include "support/RecordingLog.h"

#include <gtest/gtest.h>

namespace tovik {
namespace {

constexpr auto path = "/home/ada/.local/state/tovik-record/tovik_record_debug.log";

class DebugLogTest : public testing::Test {
protected:
    test::FakeFiles files;
    test::ManualTime time;
    test::RecordingLog log;
    DebugLog debugLog{files, time, log, path};
};

TEST_F(DebugLogTest, firstMessage_makesTheFileWithExactlyOneLine) {
    debugLog.debugLog("applicationDidFinishLaunching started");
    EXPECT_EQ(files.contentOf(path), "[2025-03-01 14:05:09 +0000] applicationDidFinishLaunching started\n");
}

TEST_F(DebugLogTest, furtherMessages_areAppended) {
    debugLog.debugLog("one");
    time.advance(Seconds(1));
    debugLog.debugLog("two");
    EXPECT_EQ(files.contentOf(path), "[2025-03-01 14:05:09 +0000] one\n[2025-03-01 14:05:10 +0000] two\n");
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
    EXPECT_EQ(files.contentOf(path), "[2025-03-01 14:05:09 +0000] one\n[2025-03-01 14:05:09 +0000] two\n"
                                     "[2025-03-01 14:05:09 +0000] three\n");
}

TEST_F(DebugLogTest, whenTheFileIsThereButCannotBeAppendedTo_itKeepsWhatItHolds) {
    files.addFile(path, "an earlier launch\n");
    files.failToAppend(Error{"POSIX", 5, "Input/output error"});
    debugLog.debugLog("one");
    EXPECT_EQ(files.contentOf(path), "an earlier launch\n");
    files.failToAppend(std::nullopt);
    debugLog.debugLog("two");
    EXPECT_EQ(files.contentOf(path),
              "an earlier launch\n[2025-03-01 14:05:09 +0000] one\n[2025-03-01 14:05:09 +0000] two\n");
}

TEST_F(DebugLogTest, whenTheFolderIsRemovedInBetween_theNextLineMakesANewFile) {
    debugLog.debugLog("one");
    ASSERT_TRUE(files.remove(path));
    debugLog.debugLog("two");
    EXPECT_EQ(files.contentOf(path), "[2025-03-01 14:05:09 +0000] two\n");
}

TEST_F(DebugLogTest, whenTheMessageIsNoUtf8_theFileIsLeftAlone) {
    debugLog.debugLog("\xff\xfe");
    EXPECT_FALSE(files.exists(path));
    EXPECT_EQ(log.logged().size(), 1u);
}

} // namespace
} // namespace tovik
