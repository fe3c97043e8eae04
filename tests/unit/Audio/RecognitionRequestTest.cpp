// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Audio/RecognitionRequest.h"

#include "support/ReadSound.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

namespace tovik::test {
namespace {

using testing::IsEmpty;

constexpr double kRate = 100;
constexpr std::size_t kCapacity = 4000;
constexpr double kCapacitySeconds = 40;

std::vector<float> counting(std::size_t count, float from = 0) {
    std::vector<float> frames(count);
    std::iota(frames.begin(), frames.end(), from);
    return frames;
}

void append(RecognitionRequest& request, const std::vector<float>& frames) {
    request.append({frames, kRate});
}

TEST(RecognitionRequest, whenEndedWithoutSound_readsNothing) {
    RecognitionRequest request({}, kRate);
    request.endAudio();
    EXPECT_TRUE(readAll(request, 7).empty());
}

TEST(RecognitionRequest, whenReadInPieces_givesEveryFrameInOrder) {
    RecognitionRequest request({}, kRate);
    append(request, counting(100));
    append(request, counting(55, 100));
    request.endAudio();
    EXPECT_EQ(readAll(request, 7), counting(155));
}

TEST(RecognitionRequest, whenMuchIsReadAsItComes_keepsTheOrder) {
    RecognitionRequest request({}, kRate);
    std::vector<float> heard;
    std::array<float, 30000> part{};
    for (int round = 0; round < 5; ++round) {
        append(request, counting(part.size(), static_cast<float>(round) * part.size()));
        ASSERT_EQ(readSome(request, part), part.size());
        heard.insert(heard.end(), part.begin(), part.end());
    }
    EXPECT_EQ(heard, counting(5 * part.size()));
    EXPECT_EQ(request.droppedFrames(), 0U);
}

TEST(RecognitionRequest, whenNobodyReadsForLong_keepsEverything) {
    RecognitionRequest request({}, kRate);
    for (std::size_t second = 0; second < 3000; ++second) {
        append(request, counting(100, static_cast<float>(second * 100)));
    }
    request.endAudio();
    EXPECT_EQ(request.waitingFrames(), 300000U);
    EXPECT_EQ(readAll(request, 1000), counting(300000));
    EXPECT_EQ(request.droppedFrames(), 0U);
}

TEST(RecognitionRequest, whenItHoldsAllThatItMay_dropsWhatDoesNotFitAndCountsIt) {
    RecognitionRequest request({}, kRate, kCapacitySeconds);
    append(request, counting(kCapacity - 10));
    append(request, counting(25, kCapacity - 10));
    append(request, counting(5));
    request.endAudio();
    EXPECT_EQ(request.droppedFrames(), 20U);
    EXPECT_EQ(readAll(request, 1000), counting(kCapacity));
}

TEST(RecognitionRequest, afterTheEnd_ignoresSound) {
    RecognitionRequest request({}, kRate);
    append(request, counting(3));
    request.endAudio();
    append(request, counting(3));
    request.endAudio();
    EXPECT_EQ(readAll(request, 7), counting(3));
}

TEST(RecognitionRequest, whenAskedForNothing_givesNothingAtOnce) {
    RecognitionRequest request({}, kRate);
    EXPECT_EQ(readSome(request, {}), 0U);
}

TEST(RecognitionRequest, tellsHowManyFramesWait) {
    RecognitionRequest request({}, kRate);
    EXPECT_EQ(request.waitingFrames(), 0U);
    append(request, counting(10));
    EXPECT_EQ(request.waitingFrames(), 10U);
    std::array<float, 4> some{};
    EXPECT_EQ(readSome(request, some), 4U);
    EXPECT_EQ(request.waitingFrames(), 6U);
}

TEST(RecognitionRequest, whenNothingComesInTime_givesUpWaiting) {
    RecognitionRequest request({}, kRate);
    std::array<float, 4> some{};
    EXPECT_EQ(request.readWithin(some, std::chrono::milliseconds(1)), std::nullopt);
}

TEST(RecognitionRequest, whenSoundWasReadAlready_doesNotTakeItsArrivalForNewSound) {
    RecognitionRequest request({}, kRate);
    append(request, counting(1));
    append(request, counting(1));
    std::array<float, 4> some{};
    EXPECT_EQ(request.readWithin(some, std::chrono::milliseconds(1)), 2U);
    EXPECT_EQ(request.readWithin(some, std::chrono::milliseconds(1)), std::nullopt);
}

TEST(RecognitionRequest, whenEnded_readWithinTellsTheEndAtOnce) {
    RecognitionRequest request({}, kRate);
    request.endAudio();
    std::array<float, 4> some{};
    EXPECT_EQ(request.readWithin(some, std::chrono::hours(1)), 0U);
}

TEST(RecognitionRequest, whenOneThreadAppendsAndAnotherReads_nothingIsLostOrSwapped) {
    constexpr std::size_t buffers = 2000;
    constexpr std::size_t framesPerBuffer = 130;
    RecognitionRequest request({}, kRate);
    std::thread microphone([&] {
        for (std::size_t i = 0; i < buffers; ++i) {
            append(request, counting(framesPerBuffer, static_cast<float>(i * framesPerBuffer)));
        }
        request.endAudio();
    });
    const auto heard = readAll(request, 64);
    microphone.join();
    EXPECT_EQ(heard, counting(buffers * framesPerBuffer));
}

// Sound of another rate than the request's.

constexpr double kPi = 3.14159265358979;

std::vector<float> tone(double sampleRate, double frequency, double seconds) {
    std::vector<float> samples(static_cast<std::size_t>(sampleRate * seconds));
    for (std::size_t index = 0; index < samples.size(); ++index) {
        samples[index] =
            static_cast<float>(0.5 * std::sin(2 * kPi * frequency * static_cast<double>(index) / sampleRate));
    }
    return samples;
}

std::vector<float> endAndRead(RecognitionRequest& request) {
    request.endAudio();
    return readAll(request);
}

std::vector<float> feedInBuffers(const std::vector<float>& samples, double sampleRate, double requestRate,
                                 std::size_t bufferSize) {
    RecognitionRequest request({}, requestRate);
    for (std::size_t begin = 0; begin < samples.size(); begin += bufferSize) {
        const auto frames = std::min(bufferSize, samples.size() - begin);
        request.append({std::span(samples).subspan(begin, frames), sampleRate});
    }
    return endAndRead(request);
}

TEST(SoundOfAnotherRate, whenTheRatesAgree_handsTheSamplesOnAsTheyAre) {
    const auto samples = tone(16000, 440, 0.2);
    EXPECT_EQ(feedInBuffers(samples, 16000, 16000, 1024), samples);
}

TEST(SoundOfAnotherRate, whenABufferHasNoRate_takesItForTheRequests) {
    const auto samples = tone(16000, 440, 0.1);
    EXPECT_EQ(feedInBuffers(samples, 0, 16000, 1024), samples);
}

TEST(SoundOfAnotherRate, whenABufferIsEmpty_addsNothing) {
    EXPECT_THAT(feedInBuffers({}, 48000, 16000, 1024), IsEmpty());
    RecognitionRequest request({}, 16000);
    request.append({{}, 48000});
    EXPECT_THAT(endAndRead(request), IsEmpty());
}

struct RateRow {
    const char* name;
    double microphone;
    double request;
    std::size_t bufferSize;
};

std::ostream& operator<<(std::ostream& out, const RateRow& row) {
    return out << row.name;
}

class OtherRate : public testing::TestWithParam<RateRow> {};

TEST_P(OtherRate, keepsPitchLoudnessAndLength) {
    const auto& row = GetParam();
    const auto heard =
        feedInBuffers(tone(row.microphone, 300, 1), row.microphone, row.request, row.bufferSize);
    // Nothing follows the last frame, so nothing lies between it and the next.
    ASSERT_NEAR(static_cast<double>(heard.size()), row.request, 1 + std::ceil(row.request / row.microphone));
    const auto expected = tone(row.request, 300, 1);
    for (std::size_t index = 0; index < std::min(heard.size(), expected.size()); ++index) {
        ASSERT_NEAR(heard[index], expected[index], 0.01) << index;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, OtherRate,
    testing::Values(RateRow{"down", 48000, 16000, 1024}, RateRow{"up", 16000, 48000, 1024},
                    RateRow{"slightlyDown", 48000, 44100, 1024}, RateRow{"slightlyUp", 44100, 48000, 1024},
                    RateRow{"inSingleFrames", 48000, 16000, 1}, RateRow{"inOddPieces", 44100, 16000, 7},
                    RateRow{"upInSingleFrames", 8000, 48000, 1}),
    [](const auto& row) { return std::string(row.param.name); });

} // namespace
} // namespace tovik::test
