// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/QtUserDefaultsChanges.h"
#include "Linux/Storage/JsonUserDefaults.h"
#include "Linux/Storage/LocalFiles.h"
#include "support/EventLoop.h"
#include "support/FakeUserDefaultsChanges.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>

namespace tovik::test {
namespace {

/// Settings of this process, and somebody else who changes them.
class ChangesWorld {
public:
    virtual ~ChangesWorld() = default;
    [[nodiscard]] virtual UserDefaults& defaults() = 0;
    [[nodiscard]] virtual UserDefaultsChanges& changes() = 0;
    virtual void changeElsewhere(const std::string& key, const PropertyValue& value) = 0;
};

class FakeWorld : public ChangesWorld {
public:
    UserDefaults& defaults() override { return defaults_; }
    UserDefaultsChanges& changes() override { return changes_; }
    void changeElsewhere(const std::string& key, const PropertyValue& value) override {
        defaults_.set(key, value);
        changes_.announce();
    }

private:
    MemoryUserDefaults defaults_;
    FakeUserDefaultsChanges changes_;
};

class FileWorld : public ChangesWorld {
public:
    UserDefaults& defaults() override { return own_; }
    UserDefaultsChanges& changes() override { return changes_; }
    void changeElsewhere(const std::string& key, const PropertyValue& value) override {
        other_.set(key, value);
    }

private:
    TemporaryFolder folder_;
    RecordingLog log_;
    std::string file_ = folder_ / "tovik-record/defaults.json";
    JsonUserDefaults own_{file_, log_};
    JsonUserDefaults other_{file_, log_};
    QtUserDefaultsChanges changes_{file_, log_};
};

struct WorldKind {
    std::string name;
    std::function<std::unique_ptr<ChangesWorld>()> make;
};

class UserDefaultsChangesContract : public testing::TestWithParam<WorldKind> {
protected:
    std::unique_ptr<ChangesWorld> world = GetParam().make();
};

TEST_P(UserDefaultsChangesContract, whenSettingsChangeElsewhere_everyObserverReadsTheNewValue) {
    std::string first;
    std::string second;
    const auto one = world->changes().observe([&] { first = world->defaults().string("key").value_or(""); });
    const auto two = world->changes().observe([&] { second = world->defaults().string("key").value_or(""); });
    world->changeElsewhere("key", "a");
    EXPECT_TRUE(runUntil([&] { return first == "a" && second == "a"; }));
    world->changeElsewhere("key", "b");
    EXPECT_TRUE(runUntil([&] { return first == "b" && second == "b"; }));
}

TEST_P(UserDefaultsChangesContract, whenTheTokenIsDropped_theObserverHearsNoMore) {
    bool heard = false;
    bool otherHeard = false;
    auto token = world->changes().observe([&] { heard = true; });
    const auto other = world->changes().observe([&] { otherHeard = true; });
    token.end();
    world->changeElsewhere("key", "a");
    EXPECT_TRUE(runUntil([&] { return otherHeard; }));
    EXPECT_FALSE(heard);
}

TEST_P(UserDefaultsChangesContract, anObserver_mayDropItsOwnToken) {
    int calls = 0;
    int otherCalls = 0;
    Subscription token;
    token = world->changes().observe([&] {
        ++calls;
        token.end();
    });
    const auto other = world->changes().observe([&] { ++otherCalls; });
    world->changeElsewhere("key", "a");
    EXPECT_TRUE(runUntil([&] { return otherCalls == 1; }));
    world->changeElsewhere("key", "b");
    EXPECT_TRUE(runUntil([&] { return otherCalls >= 2; }));
    EXPECT_EQ(calls, 1);
}

INSTANTIATE_TEST_SUITE_P(Kinds, UserDefaultsChangesContract,
                         testing::Values(WorldKind{"Fake", [] { return std::make_unique<FakeWorld>(); }},
                                         WorldKind{"File", [] { return std::make_unique<FileWorld>(); }}),
                         [](const auto& kind) { return kind.param.name; });

// ------------------------------------------------------------------------------- the watched file

namespace fs = std::filesystem;

/// The kernel queues what it notices before the system call that caused it returns, so one round of the event
/// loop tells all.
class WatchedSettings : public testing::Test {
protected:
    void start() {
        changes.emplace(file, log);
        token = changes->observe([this] { ++told; });
    }
    bool isTold() {
        runPendingEvents();
        return std::exchange(told, 0) > 0;
    }
    static void write(const std::string& path, const char* content) { std::ofstream(path) << content; }

    TemporaryFolder folder;
    std::string file = folder / "own/settings.json";
    RecordingLog log;
    std::optional<QtUserDefaultsChanges> changes;
    Subscription token;
    int told = 0;
};

TEST_F(WatchedSettings, whenNothingHappens_nothingIsTold) {
    start();
    EXPECT_FALSE(isTold());
    EXPECT_TRUE(log.printed().empty());
}

TEST_F(WatchedSettings, whenTheFolderIsMissing_itIsMadeForTheUserAlone) {
    start();
    EXPECT_EQ(fs::status(folder / "own").permissions(), fs::perms::owner_all);
}

TEST_F(WatchedSettings, whenTheFileIsReplaced_itIsTold) {
    start();
    ASSERT_TRUE(replaceFile(file, file + ".new", "{}"));
    EXPECT_TRUE(isTold());
    ASSERT_TRUE(replaceFile(file, file + ".new", "{}"));
    EXPECT_TRUE(isTold());
    EXPECT_FALSE(isTold());
}

TEST_F(WatchedSettings, whenTheFileIsWrittenInPlaceOrRemoved_itIsTold) {
    start();
    write(file, "{}");
    EXPECT_TRUE(isTold());
    write(file, "{\"a\": 1}");
    EXPECT_TRUE(isTold());
    fs::remove(file);
    EXPECT_TRUE(isTold());
}

TEST_F(WatchedSettings, whenTheFileIsBeingWritten_nothingIsToldBeforeItIsClosed) {
    start();
    std::ofstream stream(file);
    stream << "{\"half" << std::flush;
    EXPECT_FALSE(isTold());
    stream << "\": 1}" << std::flush;
    EXPECT_FALSE(isTold());
    stream.close();
    EXPECT_TRUE(isTold());
}

TEST_F(WatchedSettings, whenOtherFilesChange_nothingIsTold) {
    start();
    write(file + ".lock", "");
    write(folder / "own/another.json", "{}");
    EXPECT_FALSE(isTold());
}

TEST_F(WatchedSettings, whenTheFileIsALink_whatChangesWhereItLeadsIsTold) {
    fs::create_directories(folder / "dotfiles");
    fs::create_directories(folder / "own");
    fs::create_symlink(folder / "dotfiles/settings.json", file);
    start();
    write(folder / "dotfiles/settings.json", "{}");
    EXPECT_TRUE(isTold());
}

TEST_F(WatchedSettings, whenTheFileBecomesALink_itIsFollowed) {
    start();
    write(file, "{}");
    EXPECT_TRUE(isTold());
    fs::create_directories(folder / "dotfiles");
    fs::rename(file, folder / "dotfiles/settings.json");
    fs::create_symlink(folder / "dotfiles/settings.json", file);
    EXPECT_TRUE(isTold());
    write(folder / "dotfiles/settings.json", "{\"a\": 1}");
    EXPECT_TRUE(isTold());
}

TEST_F(WatchedSettings, whenTheFolderIsReplaced_theNewOneIsWatched) {
    start();
    fs::create_directories(folder / "other");
    fs::rename(folder / "own", folder / "away");
    fs::rename(folder / "other", folder / "own");
    EXPECT_TRUE(isTold());
    write(file, "{}");
    EXPECT_TRUE(isTold());
}

TEST_F(WatchedSettings, whenTheFolderCannotBe_theLogSaysWhy) {
    write(folder / "own", "a file where a folder should be");
    start();
    EXPECT_THAT(log.printed(), testing::ElementsAre(testing::EndsWith(
                                   "; settings that another program changes are not shown at once")));
}

} // namespace
} // namespace tovik::test
