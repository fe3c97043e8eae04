// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/QtMainQueue.h"

#include "support/EventLoop.h"

#include <QEventLoop>
#include <QTimer>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <optional>

namespace tovik::test {
namespace {

TEST(QtMainQueue, whenItIsDestroyed_nothingThatWaitsRunsAnyMore) {
    auto queue = std::make_unique<QtMainQueue>();
    bool hasRun = false;
    const auto run = [&] { hasRun = true; };
    queue->async(run);
    queue->asyncAfter(Seconds(0.002), run);
    auto once = queue->after(Seconds(0.002), run);
    auto again = queue->every(Seconds(0.002), run);
    queue.reset();
    QtMainQueue other;
    bool isOver = false;
    other.asyncAfter(Seconds(0.02), [&] { isOver = true; });
    EXPECT_TRUE(runUntil([&] { return isOver; }));
    EXPECT_FALSE(hasRun);
    // The tokens are left over, and dropping them is harmless.
    once.end();
    again.end();
}

TEST(QtMainQueue, whenItsOwnWorkDestroysIt_theRestNeverRuns) {
    auto queue = std::make_unique<QtMainQueue>();
    bool hasRun = false;
    queue->async([&] { queue.reset(); });
    queue->async([&] { hasRun = true; });
    EXPECT_TRUE(runUntil([&] { return !queue; }));
    runPendingEvents();
    EXPECT_FALSE(hasRun);
}

TEST(QtMainQueue, whenWorkRunsAnEventLoopOfItsOwn_otherWorkGoesOnInIt) {
    QtMainQueue queue;
    bool isOver = false;
    bool repeatedInside = false;
    const auto repeated = queue.every(Seconds(0.003), [&] { repeatedInside = true; });
    queue.async([&] {
        QEventLoop question;
        queue.async([&] { queue.asyncAfter(Seconds(0.02), [&] { question.quit(); }); });
        question.exec();
        isOver = true;
    });
    EXPECT_TRUE(runUntil([&] { return isOver; }));
    EXPECT_TRUE(repeatedInside);
}

TEST(QtMainQueue, whenWorkKeepsQueuingWork_theEventLoopStillGetsItsTurn) {
    QtMainQueue queue;
    bool isOver = false;
    std::function<void()> queueAgain = [&] {
        if (!isOver) {
            queue.async(queueAgain);
        }
    };
    queueAgain();
    QTimer::singleShot(5, [&] { isOver = true; });
    EXPECT_TRUE(runUntil([&] { return isOver; }));
}

TEST(QtMainQueue, whenTheThreadWasBusyForManyIntervals_repeatedWorkRunsOnceForThem) {
    QtMainQueue queue;
    int count = 0;
    constexpr auto interval = std::chrono::milliseconds(10);
    const auto token = queue.every(interval, [&] { ++count; });
    const auto busyUntil = std::chrono::steady_clock::now() + 20 * interval;
    while (std::chrono::steady_clock::now() < busyUntil) {
    }
    EXPECT_TRUE(runUntil([&] { return count >= 1; }));
    runPendingEvents();
    // However long this thread was kept waiting since then, nothing has run for the intervals before.
    EXPECT_LE(count, 1 + (std::chrono::steady_clock::now() - busyUntil) / interval);
}

TEST(QtMainQueue, whenADelayIsBeyondAllTimers_itDoesNotRunAtOnce) {
    QtMainQueue queue;
    bool hasRun = false;
    const auto token = queue.after(Seconds(1e12), [&] { hasRun = true; });
    bool isOver = false;
    queue.asyncAfter(Seconds(0.01), [&] { isOver = true; });
    EXPECT_TRUE(runUntil([&] { return isOver; }));
    EXPECT_FALSE(hasRun);
}

} // namespace
} // namespace tovik::test
