// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/DBus/LibsecretStore.h"
#include "Linux/Desktop/QtMainQueue.h"
#include "support/EventLoop.h"
#include "support/FakeSecretStore.h"
#include "support/KeyRing.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>

namespace tovik::test {
namespace {

class KeyRingEnvironment : public testing::Environment {
public:
    void SetUp() override { ring = std::make_unique<KeyRing>(); }
    void TearDown() override { ring.reset(); }

    std::unique_ptr<KeyRing> ring;
};

/// GoogleTest owns it.
auto* const keyRing =
    static_cast<KeyRingEnvironment*>(testing::AddGlobalTestEnvironment(new KeyRingEnvironment));

using Found = Result<std::optional<std::string>>;

/// A store, and the user who keeps secrets there.
class StoreWorld {
public:
    virtual ~StoreWorld() = default;
    [[nodiscard]] virtual SecretStore& store() = 0;
    virtual void keep(const std::string& name, const std::string& secret) = 0;
    virtual void forget(const std::string& name) = 0;
};

class FakeWorld : public StoreWorld {
public:
    explicit FakeWorld(MainQueue& queue) : store_(queue) {}
    SecretStore& store() override { return store_; }
    void keep(const std::string& name, const std::string& secret) override { store_.secrets[name] = secret; }
    void forget(const std::string& name) override { store_.secrets.erase(name); }

private:
    FakeSecretStore store_;
};

/// The user has the desktop's own tool.
class KeyRingWorld : public StoreWorld {
public:
    explicit KeyRingWorld(MainQueue& queue) : store_(queue) {}
    SecretStore& store() override { return store_; }
    void keep(const std::string& name, const std::string& secret) override {
        keyRing->ring->secretTool(
            {"store", "--label=Tovik Record", "application", "tovik-record", "name", name}, secret);
    }
    void forget(const std::string& name) override {
        keyRing->ring->secretTool({"clear", "application", "tovik-record", "name", name}, "");
    }

private:
    LibsecretStore store_;
};

struct StoreKind {
    std::string name;
    std::function<std::unique_ptr<StoreWorld>(MainQueue&)> make;
};

class SecretStoreContract : public testing::TestWithParam<StoreKind> {
protected:
    Found lookUp(const std::string& name) {
        std::optional<Found> outcome;
        world->store().lookUp(name, [&](const Found& found) { outcome = found; });
        EXPECT_FALSE(outcome) << "completions come later";
        EXPECT_TRUE(runUntil([&] { return outcome.has_value(); }));
        return outcome.value_or(Error{"test", 0, "no answer"});
    }

    QtMainQueue queue;
    std::unique_ptr<StoreWorld> world = GetParam().make(queue);
};

TEST_P(SecretStoreContract, whatWasNeverKept_isNothing) {
    const auto found = lookUp("never kept");
    ASSERT_TRUE(found);
    EXPECT_EQ(found.value(), std::nullopt);
}

TEST_P(SecretStoreContract, whatIsKept_isFoundByItsNameOnly) {
    world->keep("one", "erster Schlüssel ✓");
    world->keep("two", "2");
    EXPECT_EQ(lookUp("one").value(), "erster Schlüssel ✓");
    EXPECT_EQ(lookUp("two").value(), "2");
}

TEST_P(SecretStoreContract, aSecretKeptAgain_replacesTheEarlierOne) {
    world->keep("again", "old");
    EXPECT_EQ(lookUp("again").value(), "old");
    world->keep("again", "new");
    EXPECT_EQ(lookUp("again").value(), "new");
}

TEST_P(SecretStoreContract, whatIsForgotten_isNothing) {
    world->keep("short-lived", "secret");
    EXPECT_EQ(lookUp("short-lived").value(), "secret");
    world->forget("short-lived");
    EXPECT_EQ(lookUp("short-lived").value(), std::nullopt);
}

TEST_P(SecretStoreContract, fromAnyThread_answersOnTheMainOne) {
    world->keep("thread", "secret");
    std::optional<std::thread::id> answeredOn;
    std::thread other([&] {
        world->store().lookUp("thread", [&](const Found&) { answeredOn = std::this_thread::get_id(); });
    });
    other.join();
    EXPECT_TRUE(runUntil([&] { return answeredOn.has_value(); }));
    EXPECT_EQ(answeredOn, std::this_thread::get_id());
}

INSTANTIATE_TEST_SUITE_P(
    Stores, SecretStoreContract,
    testing::Values(
        StoreKind{"FakeSecretStore", [](MainQueue& queue) { return std::make_unique<FakeWorld>(queue); }},
        StoreKind{"LibsecretStore", [](MainQueue& queue) { return std::make_unique<KeyRingWorld>(queue); }}),
    [](const auto& kind) { return kind.param.name; });

class LibsecretStoreTest : public testing::Test {
protected:
    Found lookUp(const std::string& name) {
        std::optional<Found> outcome;
        store.lookUp(name, [&](const Found& found) { outcome = found; });
        EXPECT_TRUE(runUntil([&] { return outcome.has_value(); }));
        return outcome.value_or(Error{"test", 0, "no answer"});
    }

    QtMainQueue queue;
    LibsecretStore store{queue};
};

TEST_F(LibsecretStoreTest, whatTheDesktopsToolKept_isFound) {
    keyRing->ring->secretTool(
        {"store", "--label=Tovik Record", "application", "tovik-record", "name", "by-hand"}, "typed by hand");
    EXPECT_EQ(lookUp("by-hand").value(), "typed by hand");
}

TEST_F(LibsecretStoreTest, whatOtherProgramsKept_isNotFound) {
    keyRing->ring->secretTool({"store", "--label=Other", "application", "other", "name", "theirs"}, "theirs");
    EXPECT_EQ(lookUp("theirs").value(), std::nullopt);
}

TEST_F(LibsecretStoreTest, withoutAKeyRing_isAnErrorWithASentence_untilThereIsOneAgain) {
    keyRing->ring->kill();
    const auto found = lookUp("anything");
    ASSERT_FALSE(found);
    EXPECT_TRUE(found.error().description.starts_with("Secret store: ")) << found.error().description;
    EXPECT_GT(found.error().description.size(), std::string("Secret store: ").size());
    keyRing->ring->start();
    EXPECT_TRUE(lookUp("anything"));
}

TEST_F(LibsecretStoreTest, whenItEnds_nothingIsAnsweredAnyMore) {
    auto answers = 0;
    {
        LibsecretStore brief(queue);
        for (auto count = 0; count < 20; ++count) {
            brief.lookUp("anything", [&](const Found&) { ++answers; });
        }
    }
    runPendingEvents();
    EXPECT_EQ(answers, 0);
}

TEST_F(LibsecretStoreTest, whileTheKeyRingHangs_canEndAllTheSame) {
    ASSERT_TRUE(lookUp("anything"));
    keyRing->ring->freeze();
    auto answers = 0;
    {
        LibsecretStore brief(queue);
        brief.lookUp("anything", [&](const Found&) { ++answers; });
        brief.lookUp("another", [&](const Found&) { ++answers; });
    }
    keyRing->ring->thaw();
    EXPECT_TRUE(lookUp("anything"));
    EXPECT_EQ(answers, 0);
}

} // namespace
} // namespace tovik::test
