// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Audio/RecognitionRequest.h"
#include "support/ReadSound.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <numeric>
#include <thread>
#include <vector>

namespace tovik::test {
namespace {

constexpr double kRate = 100;
constexpr std::size_t kCapacity = 4000;

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

TEST(RecognitionRequest, whenTheRingWrapsAround_keepsTheOrder) {
    RecognitionRequest request({}, kRate);
    std::vector<float> heard;
    std::array<float, 3000> part{};
    for (int round = 0; round < 5; ++round) {
        append(request, counting(part.size(), static_cast<float>(round) * part.size()));
        ASSERT_EQ(readSome(request, part), part.size());
        heard.insert(heard.end(), part.begin(), part.end());
    }
    EXPECT_EQ(heard, counting(5 * part.size()));
    EXPECT_EQ(request.droppedFrames(), 0U);
}

TEST(RecognitionRequest, whenNobodyReads_dropsWhatDoesNotFitAndCountsIt) {
    RecognitionRequest request({}, kRate);
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
    constexpr std::size_t framesPerBuffer = 13;
    RecognitionRequest request({}, 48000);
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

} // namespace
} // namespace tovik::test
