// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Storage/LocalFiles.h"
#include "support/FakeFiles.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace tovik::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

/// A file system, a folder in it that is there and empty, and somebody else who works in it.
class FilesWorld {
public:
    virtual ~FilesWorld() = default;
    [[nodiscard]] virtual Files& files() = 0;
    [[nodiscard]] virtual std::string folder() const = 0;
    [[nodiscard]] virtual std::optional<std::string> contentOf(const std::string& path) const = 0;
    virtual void putFile(const std::string& path, const std::string& content, Date modified) = 0;
};

class FakeWorld : public FilesWorld {
public:
    FakeWorld() { files_.addFolder("/folder"); }
    Files& files() override { return files_; }
    std::string folder() const override { return "/folder"; }
    std::optional<std::string> contentOf(const std::string& path) const override {
        return files_.contentOf(path);
    }
    void putFile(const std::string& path, const std::string& content, Date modified) override {
        files_.addFile(path, content, modified);
    }

private:
    FakeFiles files_;
};

class LocalWorld : public FilesWorld {
public:
    Files& files() override { return files_; }
    std::string folder() const override { return folder_.path(); }
    std::optional<std::string> contentOf(const std::string& path) const override { return readFile(path); }
    void putFile(const std::string& path, const std::string& content, Date modified) override {
        writeFile(path, content);
        std::filesystem::last_write_time(path, std::filesystem::file_time_type::clock::from_sys(modified));
    }

private:
    TemporaryFolder folder_;
    LocalFiles files_;
};

struct WorldKind {
    std::string name;
    std::function<std::unique_ptr<FilesWorld>()> make;
};

class FilesContract : public testing::TestWithParam<WorldKind> {
protected:
    [[nodiscard]] std::string at(const std::string& name) const { return world->folder() + "/" + name; }
    [[nodiscard]] std::vector<std::string> listed(const std::string& folder) const {
        std::vector<std::string> paths;
        const auto entries = files.contentsOfFolder(folder);
        EXPECT_TRUE(entries);
        for (const auto& entry : entries ? entries.value() : std::vector<FolderEntry>()) {
            paths.push_back(entry.path);
        }
        return paths;
    }

    std::unique_ptr<FilesWorld> world = GetParam().make();
    Files& files = world->files();
    const Date aDate{std::chrono::seconds(1740837909)};
};

TEST_P(FilesContract, createFolder_makesTheFoldersAboveItAndTakesAnExistingOne) {
    EXPECT_TRUE(files.createFolder(at("a/b/c")));
    EXPECT_TRUE(files.exists(at("a/b/c")));
    EXPECT_TRUE(files.createFolder(at("a/b/c")));
    EXPECT_TRUE(files.createFolder(at("a/b")));
}

TEST_P(FilesContract, createFolder_failsWhereAFileLies) {
    ASSERT_TRUE(files.writeAtomically(at("a"), "file"));
    EXPECT_FALSE(files.createFolder(at("a")));
    EXPECT_FALSE(files.createFolder(at("a/b")));
    EXPECT_EQ(world->contentOf(at("a")), "file");
}

TEST_P(FilesContract, writeAtomically_createsAndReplaces) {
    EXPECT_TRUE(files.writeAtomically(at("a"), "a longer first content"));
    EXPECT_EQ(world->contentOf(at("a")), "a longer first content");
    EXPECT_TRUE(files.writeAtomically(at("a"), "second"));
    EXPECT_EQ(world->contentOf(at("a")), "second");
    EXPECT_TRUE(files.writeAtomically(at("a"), ""));
    EXPECT_EQ(world->contentOf(at("a")), "");
}

TEST_P(FilesContract, writeAtomically_keepsBytesAsTheyStand) {
    const auto content = std::string("\0\xff\r\n\n", 5) + std::string(300000, 'x');
    EXPECT_TRUE(files.writeAtomically(at("a"), content));
    EXPECT_EQ(world->contentOf(at("a")), content);
}

TEST_P(FilesContract, writeAtomically_failsWithoutItsFolderOrOntoOne) {
    EXPECT_FALSE(files.writeAtomically(at("missing/a"), "x"));
    ASSERT_TRUE(files.createFolder(at("folder")));
    EXPECT_FALSE(files.writeAtomically(at("folder"), "x"));
    EXPECT_TRUE(files.exists(at("folder")));
}

TEST_P(FilesContract, append_addsToTheEndOfAFileThatExists) {
    ASSERT_TRUE(files.writeAtomically(at("a"), "one\n"));
    EXPECT_TRUE(files.append(at("a"), "two\n"));
    EXPECT_TRUE(files.append(at("a"), ""));
    EXPECT_EQ(world->contentOf(at("a")), "one\ntwo\n");
}

TEST_P(FilesContract, append_failsWithoutTheFileAndDoesNotCreateIt) {
    const auto appended = files.append(at("a"), "x");
    ASSERT_FALSE(appended);
    EXPECT_EQ(appended.error().code, ENOENT);
    EXPECT_FALSE(appended.error().description.empty());
    EXPECT_FALSE(files.exists(at("a")));
}

TEST_P(FilesContract, remove_removesAFileAndFailsWithoutOne) {
    ASSERT_TRUE(files.writeAtomically(at("a"), "x"));
    EXPECT_TRUE(files.remove(at("a")));
    EXPECT_FALSE(files.exists(at("a")));
    const auto removed = files.remove(at("a"));
    ASSERT_FALSE(removed);
    EXPECT_EQ(removed.error().code, ENOENT);
}

TEST_P(FilesContract, remove_doesNotRemoveAFolder) {
    ASSERT_TRUE(files.createFolder(at("folder")));
    EXPECT_FALSE(files.remove(at("folder")));
    EXPECT_TRUE(files.exists(at("folder")));
}

TEST_P(FilesContract, exists_tellsFilesAndFoldersFromNothing) {
    EXPECT_TRUE(files.exists(world->folder()));
    EXPECT_FALSE(files.exists(at("a")));
    ASSERT_TRUE(files.writeAtomically(at("a"), "x"));
    EXPECT_TRUE(files.exists(at("a")));
    EXPECT_FALSE(files.exists(at("a/b")));
}

TEST_P(FilesContract, contentsOfFolder_listsFilesAndFoldersInItButNothingHiddenOrDeeper) {
    EXPECT_THAT(listed(world->folder()), IsEmpty());
    ASSERT_TRUE(files.writeAtomically(at("a"), "x"));
    ASSERT_TRUE(files.writeAtomically(at(".hidden"), "x"));
    ASSERT_TRUE(files.createFolder(at("b/c")));
    EXPECT_THAT(listed(world->folder()), UnorderedElementsAre(at("a"), at("b")));
}

TEST_P(FilesContract, contentsOfFolder_tellsWhenAFileWasChanged) {
    world->putFile(at("a"), "x", aDate);
    const auto entries = files.contentsOfFolder(world->folder());
    ASSERT_TRUE(entries);
    EXPECT_THAT(entries.value(), ElementsAre(FolderEntry{at("a"), aDate}));
}

TEST_P(FilesContract, contentsOfFolder_failsWithoutTheFolderAndForAFile) {
    EXPECT_FALSE(files.contentsOfFolder(at("missing")));
    ASSERT_TRUE(files.writeAtomically(at("a"), "x"));
    EXPECT_FALSE(files.contentsOfFolder(at("a")));
}

INSTANTIATE_TEST_SUITE_P(FileSystems, FilesContract,
                         testing::Values(WorldKind{"FakeFiles", [] { return std::make_unique<FakeWorld>(); }},
                                         WorldKind{"LocalFiles",
                                                   [] { return std::make_unique<LocalWorld>(); }}),
                         [](const auto& kind) { return kind.param.name; });

} // namespace
} // namespace tovik::test
