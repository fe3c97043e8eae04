// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Storage/LocalFiles.h"

#include "support/FullDisk.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

namespace tovik::test {
namespace {

TEST(LocalFiles, whenAFileIsWritten_onlyTheUserCanReadItAndItsNewFolders) {
    const TemporaryFolder folder;
    LocalFiles files;
    ASSERT_TRUE(files.createFolder(folder / "a/b"));
    ASSERT_TRUE(files.writeAtomically(folder / "a/b/c", "content"));
    EXPECT_EQ(modeOf(folder / "a"), 0700u);
    EXPECT_EQ(modeOf(folder / "a/b"), 0700u);
    EXPECT_EQ(modeOf(folder / "a/b/c"), 0600u);
}

TEST(LocalFiles, whenAFileIsWritten_nothingElseIsLeftInTheFolder) {
    const TemporaryFolder folder;
    LocalFiles files;
    ASSERT_TRUE(files.writeAtomically(folder / "c", "one"));
    ASSERT_TRUE(files.writeAtomically(folder / "c", "two"));
    EXPECT_THAT(namesIn(folder.path()), testing::ElementsAre("c"));
}

TEST(LocalFiles, whenTheFileIsALink_theFileItLeadsToIsWritten) {
    const TemporaryFolder folder;
    writeFile(folder / "real", "old");
    std::filesystem::create_symlink("real", folder / "link");
    ASSERT_TRUE(LocalFiles().writeAtomically(folder / "link", "new"));
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
    EXPECT_EQ(readFile(folder / "real"), "new");
}

TEST(LocalFiles, whenTheDiskIsFull_writingAndAppendingFailAndTheSentenceNamesFileAndReason) {
    LocalFiles files;
    const auto appended = files.append("/dev/full", "x");
    ASSERT_FALSE(appended);
    EXPECT_EQ(appended.error(),
              (Error{"POSIX", ENOSPC, "Cannot append to /dev/full: No space left on device"}));
}

TEST(LocalFiles, whenOnlyAPartFits_appendingLeavesTheFileAsItWas) {
    const TemporaryFolder folder;
    writeFile(folder / "log", "one\n");
    {
        const FullDisk full(6);
        EXPECT_FALSE(LocalFiles().append(folder / "log", "two\n"));
    }
    EXPECT_EQ(readFile(folder / "log"), "one\n");
}

TEST(LocalFiles, whenTheFolderTakesNoFiles_theWriteFailsWithTheReason) {
    const auto written = LocalFiles().writeAtomically("/proc/tovik", "x");
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().domain, "POSIX");
    EXPECT_THAT(written.error().description, testing::StartsWith("Cannot write /proc/tovik: "));
}

TEST(LocalFiles, whenAPathHoldsANul_itIsRefusedAndNotCutShort) {
    const TemporaryFolder folder;
    writeFile(folder / "a", "kept");
    const auto path = (folder / "a") + std::string("\0b", 2);
    LocalFiles files;
    EXPECT_FALSE(files.writeAtomically(path, "x"));
    EXPECT_FALSE(files.append(path, "x"));
    EXPECT_FALSE(files.remove(path));
    EXPECT_FALSE(files.createFolder(path));
    EXPECT_FALSE(files.exists(path));
    EXPECT_FALSE(files.contentsOfFolder(path));
    EXPECT_EQ(readFile(folder / "a"), "kept");
}

TEST(LocalFiles, whenALinkInAFolderDangles_itIsListedWithoutADate) {
    const TemporaryFolder folder;
    std::filesystem::create_symlink("nowhere", folder / "link");
    const auto entries = LocalFiles().contentsOfFolder(folder.path());
    ASSERT_TRUE(entries);
    EXPECT_THAT(entries.value(), testing::ElementsAre(FolderEntry{folder / "link", std::nullopt}));
}

} // namespace
} // namespace tovik::test
