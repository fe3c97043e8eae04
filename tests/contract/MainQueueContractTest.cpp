// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/QtMainQueue.h"
#include "support/EventLoop.h"
#include "support/ManualTime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace tovik::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A main queue, the clock beside it, and time that passes when the test says so.
class MainQueueWorld {
public:
    virtual ~MainQueueWorld() = default;
    [[nodiscard]] virtual MainQueue& queue() = 0;
    [[nodiscard]] virtual Clock& clock() = 0;
    virtual bool runUntil(const std::function<bool()>& condition) = 0;
};

class ManualWorld : public MainQueueWorld {
public:
    MainQueue& queue() override { return time_; }
    Clock& clock() override { return time_; }
    bool runUntil(const std::function<bool()>& condition) override {
        // Other threads live in real time.
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(15);
        while (!condition() && std::chrono::steady_clock::now() < deadline) {
            time_.advance(Seconds(0.001));
        }
        return condition();
    }

private:
    ManualTime time_;
};

class QtWorld : public MainQueueWorld {
public:
    MainQueue& queue() override { return queue_; }
    Clock& clock() override { return clock_; }
    bool runUntil(const std::function<bool()>& condition) override { return test::runUntil(condition); }

private:
    QtMainQueue queue_;
    SystemClock clock_;
};

struct WorldKind {
    std::string name;
    std::function<std::unique_ptr<MainQueueWorld>()> make;
};

class MainQueueContract : public testing::TestWithParam<WorldKind> {
protected:
    [[nodiscard]] MainQueue& queue() { return world->queue(); }
    /// Work that notes its name.
    std::function<void()> note(const std::string& name) {
        return [this, name] { done.push_back(name); };
    }
    void runUntilDone(std::size_t count) {
        EXPECT_TRUE(world->runUntil([&] { return done.size() >= count; }));
    }
    /// Everything that is due within this time has been done, or never will be.
    void letPass(Seconds time) {
        bool isOver = false;
        queue().asyncAfter(time, [&] { isOver = true; });
        EXPECT_TRUE(world->runUntil([&] { return isOver; }));
    }

    std::unique_ptr<MainQueueWorld> world = GetParam().make();
    std::vector<std::string> done;
};

TEST_P(MainQueueContract, async_neverRunsBeforeTheCallReturns) {
    queue().async(note("a"));
    EXPECT_THAT(done, IsEmpty());
    runUntilDone(1);
    EXPECT_THAT(done, ElementsAre("a"));
}

TEST_P(MainQueueContract, async_keepsTheOrder) {
    for (const char* const name : {"a", "b", "c"}) {
        queue().async(note(name));
    }
    runUntilDone(3);
    EXPECT_THAT(done, ElementsAre("a", "b", "c"));
}

TEST_P(MainQueueContract, async_fromManyThreadsRunsAllOnTheMainThreadInEachThreadsOrder) {
    constexpr int kEach = 200;
    const auto mainThread = std::this_thread::get_id();
    std::vector<std::vector<int>> seen(4);
    std::size_t count = 0;
    std::vector<std::thread> threads;
    threads.reserve(seen.size());
    for (auto& numbers : seen) {
        threads.emplace_back([&] {
            for (int n = 0; n < kEach; ++n) {
                queue().async([&, n] {
                    EXPECT_EQ(std::this_thread::get_id(), mainThread);
                    numbers.push_back(n);
                    ++count;
                });
            }
        });
    }
    EXPECT_TRUE(world->runUntil([&] { return count == seen.size() * kEach; }));
    for (auto& thread : threads) {
        thread.join();
    }
    for (const auto& numbers : seen) {
        EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
    }
}

TEST_P(MainQueueContract, workThatQueuesWork_runsThatToo) {
    queue().async([this] {
        done.emplace_back("a");
        queue().async(note("b"));
        EXPECT_EQ(done.size(), 1u);
    });
    runUntilDone(2);
    EXPECT_THAT(done, ElementsAre("a", "b"));
}

TEST_P(MainQueueContract, delayedWork_runsOnceAndNotBeforeItsTime) {
    const auto start = world->clock().now();
    std::optional<Date> ranAt;
    queue().asyncAfter(Seconds(0.030), [&] {
        ranAt = world->clock().now();
        done.emplace_back("a");
    });
    letPass(Seconds(0.080));
    EXPECT_THAT(done, ElementsAre("a"));
    ASSERT_TRUE(ranAt);
    EXPECT_GE(Seconds(*ranAt - start).count(), 0.030 - 0.001);
}

TEST_P(MainQueueContract, workOfDifferentDelays_runsAsItFallsDue) {
    queue().asyncAfter(Seconds(0.020), note("third"));
    const auto token = queue().after(Seconds(0.010), note("second"));
    queue().async(note("first"));
    queue().asyncAfter(Seconds(0.030), note("fourth"));
    runUntilDone(4);
    EXPECT_THAT(done, ElementsAre("first", "second", "third", "fourth"));
}

TEST_P(MainQueueContract, workOfTheSameDelay_runsInTheOrderOfTheCalls) {
    const auto token = queue().after(Seconds(0.005), note("a"));
    queue().asyncAfter(Seconds(0.005), note("b"));
    const auto other = queue().after(Seconds(0.005), note("c"));
    runUntilDone(3);
    EXPECT_THAT(done, ElementsAre("a", "b", "c"));
}

TEST_P(MainQueueContract, whenTheMainThreadWasBusy_overdueWorkStillRunsBeforeWhatWasQueuedLater) {
    queue().asyncAfter(Seconds(0.005), note("timer"));
    queue().async([this] {
        world->clock().pause(Seconds(0.020));
        queue().async(note("later"));
    });
    runUntilDone(2);
    EXPECT_THAT(done, ElementsAre("timer", "later"));
}

TEST_P(MainQueueContract, aDelayOfZero_runsSoonButNotAtOnce) {
    const auto token = queue().after(Seconds(0), note("a"));
    queue().async(note("b"));
    EXPECT_THAT(done, IsEmpty());
    runUntilDone(2);
    EXPECT_THAT(done, ElementsAre("a", "b"));
}

TEST_P(MainQueueContract, aDroppedToken_takesTheWorkBack) {
    auto token = queue().after(Seconds(0.005), note("a"));
    token.end();
    { const auto dropped = queue().every(Seconds(0.005), note("b")); }
    letPass(Seconds(0.030));
    EXPECT_THAT(done, IsEmpty());
}

TEST_P(MainQueueContract, aTokenDroppedByOtherWorkThatIsDueTogether_takesTheWorkBack) {
    Subscription victim;
    queue().asyncAfter(Seconds(0.005), [&] { victim.end(); });
    victim = queue().after(Seconds(0.005), note("a"));
    letPass(Seconds(0.030));
    EXPECT_THAT(done, IsEmpty());
}

TEST_P(MainQueueContract, aTokenDroppedByItsOwnWork_isHarmless) {
    Subscription once;
    // What the work holds must survive the drop.
    once = queue().after(Seconds(0.005), [this, &once, name = std::string(100, 'a')] {
        once.end();
        done.push_back(name);
    });
    Subscription repeated;
    repeated = queue().every(Seconds(0.005), [this, &repeated, name = std::string(100, 'b')] {
        repeated = Subscription();
        done.push_back(name);
    });
    letPass(Seconds(0.040));
    EXPECT_THAT(done, ElementsAre(std::string(100, 'a'), std::string(100, 'b')));
}

TEST_P(MainQueueContract, aTokenDroppedAfterItsWork_isHarmless) {
    auto token = queue().after(Seconds(0.005), note("a"));
    runUntilDone(1);
    token.end();
    letPass(Seconds(0.020));
    EXPECT_THAT(done, ElementsAre("a"));
}

TEST_P(MainQueueContract, repeatedWork_runsFirstAfterOneIntervalAndUntilTheTokenIsDropped) {
    const auto start = world->clock().now();
    std::vector<double> times;
    auto token = queue().every(Seconds(0.010),
                               [&] { times.push_back(Seconds(world->clock().now() - start).count()); });
    EXPECT_TRUE(world->runUntil([&] { return times.size() == 5; }));
    token.end();
    letPass(Seconds(0.030));
    ASSERT_EQ(times.size(), 5u);
    for (std::size_t n = 0; n < times.size(); ++n) {
        EXPECT_GE(times[n], 0.010 * static_cast<double>(n + 1) - 0.001) << n;
    }
}

TEST_P(MainQueueContract, whenRepeatedWorkReplacesItsOwnToken_onlyTheNewOneGoesOn) {
    Subscription token;
    token = queue().every(Seconds(0.005), [&] {
        done.emplace_back("old");
        token = queue().every(Seconds(0.005), note("new"));
    });
    runUntilDone(3);
    EXPECT_THAT(done, ElementsAre("old", "new", "new"));
}

TEST_P(MainQueueContract, theClock_moves) {
    const auto before = world->clock().now();
    world->clock().pause(Seconds(0.012));
    EXPECT_GE(Seconds(world->clock().now() - before).count(), 0.011);
}

INSTANTIATE_TEST_SUITE_P(
    Queues, MainQueueContract,
    testing::Values(WorldKind{"ManualTime", [] { return std::make_unique<ManualWorld>(); }},
                    WorldKind{"QtMainQueue", [] { return std::make_unique<QtWorld>(); }}),
    [](const auto& kind) { return kind.param.name; });

} // namespace
} // namespace tovik::test
