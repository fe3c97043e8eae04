// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/PocketSphinx/FrontEnd.h"

#include <gtest/gtest.h>

namespace tovik {
namespace {

Cepstrum level(float value) {
    Cepstrum frame;
    frame.fill(value);
    return frame;
}

std::vector<Cepstrum> levels(std::size_t count, float value) {
    return std::vector<Cepstrum>(count, level(value));
}

TEST(CepstralMean, untilEnoughWasHeard_holdsEverythingBack) {
    CepstralMean mean;
    mean.begin();
    CepstralMean::Output output;
    mean.process(levels(CepstralMean::framesForEstimate - 1, 3), output);
    EXPECT_TRUE(output.frames.empty());
}

TEST(CepstralMean, onceEnoughWasHeard_givesAllOfItWithTheMeanTakenOff) {
    CepstralMean mean;
    mean.begin();
    CepstralMean::Output output;
    mean.process(levels(CepstralMean::framesForEstimate / 2, 2), output);
    mean.process(levels(CepstralMean::framesForEstimate / 2, 4), output);
    ASSERT_EQ(output.frames.size(), CepstralMean::framesForEstimate);
    EXPECT_FALSE(output.startsOver);
    EXPECT_EQ(output.frames.front(), level(-1));
    EXPECT_EQ(output.frames.back(), level(1));
}

TEST(CepstralMean, betweenEstimateAndMean_givesEveryFrameAtOnce) {
    CepstralMean mean;
    mean.begin();
    CepstralMean::Output output;
    mean.process(levels(CepstralMean::framesForEstimate, 2), output);
    mean.process(levels(3, 5), output);
    ASSERT_EQ(output.frames.size(), 3U);
    EXPECT_FALSE(output.startsOver);
    EXPECT_EQ(output.frames.front(), level(3));
}

TEST(CepstralMean, onceABetterEstimateIsThere_startsOverWithIt) {
    CepstralMean mean;
    mean.begin();
    CepstralMean::Output output;
    mean.process(levels(CepstralMean::framesForEstimate, 2), output);
    EXPECT_FALSE(output.startsOver);
    EXPECT_EQ(output.frames.front(), level(0));
    mean.process(levels(CepstralMean::framesForBetter - CepstralMean::framesForEstimate, 4), output);
    EXPECT_TRUE(output.startsOver);
    ASSERT_EQ(output.frames.size(), CepstralMean::framesForBetter);
    EXPECT_EQ(output.frames.front(), level(-1));
}

TEST(CepstralMean, onceTheMeanIsGood_startsOverWithIt) {
    CepstralMean mean;
    mean.begin();
    CepstralMean::Output output;
    mean.process(levels(CepstralMean::framesForMean / 2, 2), output);
    mean.process(levels(CepstralMean::framesForMean / 2 + 1, 4), output);
    EXPECT_TRUE(output.startsOver);
    ASSERT_EQ(output.frames.size(), CepstralMean::framesForMean + 1);
    EXPECT_EQ(output.frames.front(), level(-1));
    EXPECT_EQ(output.frames.back(), level(1));
}

TEST(CepstralMean, afterThat_theMeanStays) {
    CepstralMean mean;
    mean.begin();
    CepstralMean::Output output;
    mean.process(levels(CepstralMean::framesForMean, 2), output);
    mean.process(levels(1000, 10), output);
    EXPECT_FALSE(output.startsOver);
    ASSERT_EQ(output.frames.size(), 1000U);
    EXPECT_EQ(output.frames.back(), level(8));
    mean.finish(output);
    EXPECT_TRUE(output.frames.empty());
}

TEST(CepstralMean, whenItAllComesAtOnce_givesItOnce) {
    CepstralMean mean;
    mean.begin();
    CepstralMean::Output output;
    mean.process(levels(CepstralMean::framesForMean * 2, 2), output);
    EXPECT_EQ(output.frames.size(), CepstralMean::framesForMean * 2);
}

TEST(CepstralMean, whenTheUtteranceIsShort_usesTheMeanOfAllOfIt) {
    CepstralMean mean;
    mean.begin();
    CepstralMean::Output output;
    mean.process(levels(5, 1), output);
    mean.process(levels(5, 2), output);
    mean.finish(output);
    ASSERT_EQ(output.frames.size(), 10U);
    EXPECT_EQ(output.frames.front(), level(-0.5));
    EXPECT_EQ(output.frames.back(), level(0.5));
}

TEST(CepstralMean, whenNothingWasHeard_givesNothing) {
    CepstralMean mean;
    mean.begin();
    CepstralMean::Output output;
    mean.finish(output);
    EXPECT_TRUE(output.frames.empty());
}

TEST(CepstralMean, inTheNextUtterance_remembersTheOneBefore) {
    CepstralMean mean;
    CepstralMean::Output output;
    mean.begin();
    mean.process(levels(CepstralMean::framesToRemember, 6), output);
    mean.finish(output);
    mean.begin();
    mean.process(levels(1, 2), output);
    mean.finish(output);
    ASSERT_EQ(output.frames.size(), 1U);
    // Nearly all of the mean is of the utterance before.
    EXPECT_NEAR(output.frames.front()[0], 2 - 6, 0.1);
}

TEST(CepstralMean, theMoreIsHeard_theLessTheUtteranceBeforeCounts) {
    CepstralMean mean;
    CepstralMean::Output output;
    mean.begin();
    mean.process(levels(CepstralMean::framesToRemember, 6), output);
    mean.finish(output);
    mean.begin();
    mean.process(levels(CepstralMean::framesForMean, 2), output);
    EXPECT_EQ(output.frames.front(), level(0));
}

TEST(CepstralMean, afterAnUtteranceOfAFewFrames_doesNotRememberIt) {
    CepstralMean mean;
    CepstralMean::Output output;
    mean.begin();
    mean.process(levels(CepstralMean::framesToRemember - 1, 100), output);
    mean.finish(output);
    mean.begin();
    mean.process(levels(10, 2), output);
    mean.finish(output);
    ASSERT_EQ(output.frames.size(), 10U);
    EXPECT_EQ(output.frames.front(), level(0));
}

} // namespace
} // namespace tovik
