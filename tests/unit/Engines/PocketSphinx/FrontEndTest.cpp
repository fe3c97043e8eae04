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

/// In an utterance.
class CepstralMeanTest : public testing::Test {
protected:
    CepstralMeanTest() { mean_.begin(); }

    void hear(const std::vector<Cepstrum>& frames) { mean_.process(frames, output_); }

    CepstralMean mean_;
    CepstralMean::Output output_;
};

TEST_F(CepstralMeanTest, untilEnoughWasHeard_holdsEverythingBack) {
    hear(levels(CepstralMean::framesForEstimate - 1, 3));
    EXPECT_TRUE(output_.frames.empty());
}

TEST_F(CepstralMeanTest, onceEnoughWasHeard_givesAllOfItWithTheMeanTakenOff) {
    hear(levels(CepstralMean::framesForEstimate / 2, 2));
    hear(levels(CepstralMean::framesForEstimate / 2, 4));
    ASSERT_EQ(output_.frames.size(), CepstralMean::framesForEstimate);
    EXPECT_FALSE(output_.startsOver);
    EXPECT_EQ(output_.frames.front(), level(-1));
    EXPECT_EQ(output_.frames.back(), level(1));
}

TEST_F(CepstralMeanTest, betweenEstimateAndMean_givesEveryFrameAtOnce) {
    hear(levels(CepstralMean::framesForEstimate, 2));
    hear(levels(3, 5));
    ASSERT_EQ(output_.frames.size(), 3U);
    EXPECT_FALSE(output_.startsOver);
    EXPECT_EQ(output_.frames.front(), level(3));
}

TEST_F(CepstralMeanTest, onceABetterEstimateIsThere_startsOverWithIt) {
    hear(levels(CepstralMean::framesForEstimate, 2));
    EXPECT_FALSE(output_.startsOver);
    EXPECT_EQ(output_.frames.front(), level(0));
    hear(levels(CepstralMean::framesForBetter - CepstralMean::framesForEstimate, 4));
    EXPECT_TRUE(output_.startsOver);
    ASSERT_EQ(output_.frames.size(), CepstralMean::framesForBetter);
    EXPECT_EQ(output_.frames.front(), level(-1));
}

TEST_F(CepstralMeanTest, onceTheMeanIsGood_startsOverWithIt) {
    hear(levels(CepstralMean::framesForMean / 2, 2));
    hear(levels(CepstralMean::framesForMean / 2 + 1, 4));
    EXPECT_TRUE(output_.startsOver);
    ASSERT_EQ(output_.frames.size(), CepstralMean::framesForMean + 1);
    EXPECT_EQ(output_.frames.front(), level(-1));
    EXPECT_EQ(output_.frames.back(), level(1));
}

TEST_F(CepstralMeanTest, afterThat_theMeanStays) {
    hear(levels(CepstralMean::framesForMean, 2));
    hear(levels(1000, 10));
    EXPECT_FALSE(output_.startsOver);
    ASSERT_EQ(output_.frames.size(), 1000U);
    EXPECT_EQ(output_.frames.back(), level(8));
    mean_.finish(output_);
    EXPECT_TRUE(output_.frames.empty());
}

TEST_F(CepstralMeanTest, whenItAllComesAtOnce_givesItOnce) {
    hear(levels(CepstralMean::framesForMean * 2, 2));
    EXPECT_EQ(output_.frames.size(), CepstralMean::framesForMean * 2);
}

TEST_F(CepstralMeanTest, whenTheUtteranceIsShort_usesTheMeanOfAllOfIt) {
    hear(levels(5, 1));
    hear(levels(5, 2));
    mean_.finish(output_);
    ASSERT_EQ(output_.frames.size(), 10U);
    EXPECT_EQ(output_.frames.front(), level(-0.5));
    EXPECT_EQ(output_.frames.back(), level(0.5));
}

TEST_F(CepstralMeanTest, whenNothingWasHeard_givesNothing) {
    mean_.finish(output_);
    EXPECT_TRUE(output_.frames.empty());
}

TEST_F(CepstralMeanTest, inTheNextUtterance_remembersTheOneBefore) {
    hear(levels(CepstralMean::framesToRemember, 6));
    mean_.finish(output_);
    mean_.begin();
    hear(levels(1, 2));
    mean_.finish(output_);
    ASSERT_EQ(output_.frames.size(), 1U);
    // Nearly all of the mean is of the utterance before.
    EXPECT_NEAR(output_.frames.front()[0], 2 - 6, 0.1);
}

TEST_F(CepstralMeanTest, theMoreIsHeard_theLessTheUtteranceBeforeCounts) {
    hear(levels(CepstralMean::framesToRemember, 6));
    mean_.finish(output_);
    mean_.begin();
    hear(levels(CepstralMean::framesForMean, 2));
    EXPECT_EQ(output_.frames.front(), level(0));
}

TEST_F(CepstralMeanTest, afterAnUtteranceOfAFewFrames_doesNotRememberIt) {
    hear(levels(CepstralMean::framesToRemember - 1, 100));
    mean_.finish(output_);
    mean_.begin();
    hear(levels(10, 2));
    mean_.finish(output_);
    ASSERT_EQ(output_.frames.size(), 10U);
    EXPECT_EQ(output_.frames.front(), level(0));
}

} // namespace
} // namespace tovik
