// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Storage/FileWatch.h"

#include "Linux/Storage/FileReplacement.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>

namespace tovik {
namespace {

namespace fs = std::filesystem;

// The kernel queues what it notices before the system call that caused it returns: nothing is waited for.
struct FileWatchTest : testing::Test {
    test::TemporaryFolder folder;
    std::string file = folder / "own/settings.json";
    std::optional<FileWatch> watch;

    void start() {
        auto started = FileWatch::start(file);
        ASSERT_TRUE(started) << started.error().description;
        watch.emplace(std::move(started.value()));
    }
    static void write(const std::string& path, const char* content) { std::ofstream(path) << content; }
};

TEST_F(FileWatchTest, whenNothingHappens_noticesNothing) {
    start();
    EXPECT_FALSE(watch->takeChanges());
}

TEST_F(FileWatchTest, whenTheFolderIsMissing_createsItForTheUserAlone) {
    start();
    EXPECT_EQ(fs::status(folder / "own").permissions(), fs::perms::owner_all);
}

TEST_F(FileWatchTest, whenTheFileIsReplaced_noticesIt) {
    start();
    ASSERT_TRUE(replaceFile(file, file + ".new", "{}"));
    EXPECT_TRUE(watch->takeChanges());
    ASSERT_TRUE(replaceFile(file, file + ".new", "{}"));
    EXPECT_TRUE(watch->takeChanges());
    EXPECT_FALSE(watch->takeChanges());
}

TEST_F(FileWatchTest, whenTheFileIsWrittenInPlaceOrRemoved_noticesIt) {
    start();
    write(file, "{}");
    EXPECT_TRUE(watch->takeChanges());
    write(file, "{\"a\": 1}");
    EXPECT_TRUE(watch->takeChanges());
    fs::remove(file);
    EXPECT_TRUE(watch->takeChanges());
}

TEST_F(FileWatchTest, whenOtherFilesChange_noticesNothing) {
    start();
    write(file + ".lock", "");
    write(folder / "own/another.json", "{}");
    EXPECT_FALSE(watch->takeChanges());
}

TEST_F(FileWatchTest, whenTheFileIsALink_noticesWhatChangesWhereItLeads) {
    fs::create_directories(folder / "dotfiles");
    fs::create_directories(folder / "own");
    fs::create_symlink(folder / "dotfiles/settings.json", file);
    start();
    write(folder / "dotfiles/settings.json", "{}");
    EXPECT_TRUE(watch->takeChanges());
}

TEST_F(FileWatchTest, whenTheFileBecomesALink_followsIt) {
    start();
    write(file, "{}");
    EXPECT_TRUE(watch->takeChanges());
    fs::create_directories(folder / "dotfiles");
    fs::rename(file, folder / "dotfiles/settings.json");
    fs::create_symlink(folder / "dotfiles/settings.json", file);
    EXPECT_TRUE(watch->takeChanges());
    write(folder / "dotfiles/settings.json", "{\"a\": 1}");
    EXPECT_TRUE(watch->takeChanges());
}

TEST_F(FileWatchTest, whenTheFolderIsReplaced_noticesItAndWatchesTheNewOne) {
    start();
    fs::create_directories(folder / "other");
    fs::rename(folder / "own", folder / "away");
    fs::rename(folder / "other", folder / "own");
    EXPECT_TRUE(watch->takeChanges());
    write(file, "{}");
    EXPECT_TRUE(watch->takeChanges());
}

TEST_F(FileWatchTest, whenTheFolderCannotBe_saysWhy) {
    write(folder / "own", "a file where a folder should be");
    const auto started = FileWatch::start(file);
    ASSERT_FALSE(started);
    EXPECT_FALSE(started.error().description.empty());
}

} // namespace
} // namespace tovik
