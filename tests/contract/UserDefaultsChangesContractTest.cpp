// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/QtUserDefaultsChanges.h"
#include "Linux/Storage/JsonUserDefaults.h"
#include "support/EventLoop.h"
#include "support/FakeUserDefaultsChanges.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

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

} // namespace
} // namespace tovik::test
