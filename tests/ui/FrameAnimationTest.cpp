// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/FrameAnimation.h"

#include "support/ManualTime.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace tovik {
namespace {

struct FrameAnimationTest : testing::Test {
    test::ManualTime time;
    FrameAnimation animation{time, time};
    std::vector<double> steps;
    int completions = 0;

    void start(Seconds duration) {
        animation.start(
            duration, TimingCurve::linear, [this](double done) { steps.push_back(done); },
            [this] { ++completions; });
    }
};

TEST_F(FrameAnimationTest, whenStarted_stepsTowardsOneAndCompletesOnce) {
    start(Seconds{0.2});
    EXPECT_TRUE(animation.isRunning());
    time.advance(Seconds{0.1});
    ASSERT_FALSE(steps.empty());
    EXPECT_NEAR(steps.back(), 0.5, 0.1);
    EXPECT_EQ(completions, 0);

    time.advance(Seconds{0.1});
    EXPECT_EQ(steps.back(), 1);
    EXPECT_EQ(completions, 1);
    EXPECT_FALSE(animation.isRunning());
    EXPECT_TRUE(std::is_sorted(steps.begin(), steps.end()));
}

TEST_F(FrameAnimationTest, whenDone_nothingRunsAnyMore) {
    start(Seconds{0.2});
    time.advance(Seconds{1});
    EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(FrameAnimationTest, whenStopped_neitherStepNorCompletionFollows) {
    start(Seconds{0.2});
    time.advance(Seconds{0.1});
    const auto before = steps.size();
    animation.stop();
    time.advance(Seconds{1});
    EXPECT_EQ(steps.size(), before);
    EXPECT_EQ(completions, 0);
    EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(FrameAnimationTest, whenStartedAgain_theFirstEndsWithoutItsCompletion) {
    bool firstCompleted = false;
    animation.start(
        Seconds{0.2}, TimingCurve::linear, [](double) {}, [&] { firstCompleted = true; });
    time.advance(Seconds{0.1});
    start(Seconds{0.2});
    time.advance(Seconds{1});
    EXPECT_FALSE(firstCompleted);
    EXPECT_EQ(completions, 1);
}

TEST_F(FrameAnimationTest, whenTheThreadWasBlocked_stillEndsAtOne) {
    start(Seconds{0.2});
    time.pause(Seconds{5});
    time.runPending();
    EXPECT_EQ(steps.back(), 1);
    EXPECT_EQ(completions, 1);
}

TEST_F(FrameAnimationTest, whenCompletionDestroysIt_nothingElseHappens) {
    auto owned = std::make_unique<FrameAnimation>(time, time);
    owned->start(
        Seconds{0.1}, TimingCurve::linear, [](double) {}, [&] { owned.reset(); });
    time.advance(Seconds{1});
    EXPECT_EQ(owned, nullptr);
    EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(FrameAnimationTest, whenCompletionStartsTheNext_bothRunInFull) {
    animation.start(
        Seconds{0.1}, TimingCurve::linear, [](double) {}, [this] { start(Seconds{0.1}); });
    time.advance(Seconds{0.3});
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(steps.back(), 1);
}

} // namespace
} // namespace tovik
