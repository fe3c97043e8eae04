// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/FrameAnimation.h"

#include "support/ManualTime.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace tovik {
namespace {

// Curves.

const QEasingCurve kSlowEnds = curve::cubic(0.2, 0, 0.2, 1);

std::vector<QEasingCurve> curves() {
    return {curve::linear, curve::easeOut, curve::easeInEaseOut, kSlowEnds};
}

TEST(Curve, atTheEnds_isExact) {
    for (const QEasingCurve& each : curves()) {
        EXPECT_EQ(each.valueForProgress(0), 0);
        EXPECT_EQ(each.valueForProgress(1), 1);
        EXPECT_EQ(each.valueForProgress(-3), 0);
        EXPECT_EQ(each.valueForProgress(3), 1);
    }
}

TEST(Curve, linear_isTheTimeItself) {
    for (const double time : {0.1, 0.25, 0.5, 0.9}) {
        EXPECT_NEAR(curve::linear.valueForProgress(time), time, 1e-9);
    }
}

TEST(Curve, easeOut_isFastAtFirst) {
    EXPECT_GT(curve::easeOut.valueForProgress(0.25), 0.35);
    EXPECT_GT(curve::easeOut.valueForProgress(0.5), 0.65);
}

TEST(Curve, easeInEaseOut_isSymmetric) {
    EXPECT_NEAR(curve::easeInEaseOut.valueForProgress(0.5), 0.5, 1e-4);
    EXPECT_NEAR(curve::easeInEaseOut.valueForProgress(0.2), 1 - curve::easeInEaseOut.valueForProgress(0.8),
                1e-4);
}

TEST(Curve, thatOfTheCards_isMostlyDoneAtHalfTime) {
    // Where the parameter is 1/2: time 3/8 * 0.2 * 2 + 1/8 = 0.275, value 1/2.
    EXPECT_NEAR(kSlowEnds.valueForProgress(0.275), 0.5, 1e-4);
    EXPECT_GT(kSlowEnds.valueForProgress(0.5), 0.8);
}

TEST(Curve, neverGoesBack) {
    for (const QEasingCurve& each : curves()) {
        double last = 0;
        for (double time = 0; time <= 1; time += 0.01) {
            EXPECT_GE(each.valueForProgress(time), last);
            last = each.valueForProgress(time);
        }
    }
}

// Animations.

struct FrameAnimationTest : testing::Test {
    test::ManualTime time;
    FrameAnimation animation{time, time};
    std::vector<double> steps;
    int completions = 0;

    void start(Seconds duration) {
        animation.start(
            duration, curve::linear, [this](double done) { steps.push_back(done); },
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
        Seconds{0.2}, curve::linear, [](double) {}, [&] { firstCompleted = true; });
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
        Seconds{0.1}, curve::linear, [](double) {}, [&] { owned.reset(); });
    time.advance(Seconds{1});
    EXPECT_EQ(owned, nullptr);
    EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(FrameAnimationTest, whenCompletionStartsTheNext_bothRunInFull) {
    animation.start(
        Seconds{0.1}, curve::linear, [](double) {}, [this] { start(Seconds{0.1}); });
    time.advance(Seconds{0.3});
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(steps.back(), 1);
}

} // namespace
} // namespace tovik
