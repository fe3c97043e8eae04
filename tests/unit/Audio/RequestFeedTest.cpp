// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Audio/RequestFeed.h"

#include "Audio/RecognitionRequest.h"
#include "support/ReadSound.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace tovik {
namespace {

using testing::IsEmpty;

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
    return test::readAll(request);
}

std::vector<float> feedInBuffers(const std::vector<float>& samples, double sampleRate, double requestRate,
                                 std::size_t bufferSize) {
    const auto request = std::make_shared<RecognitionRequest>(RecognitionSettings{}, requestRate);
    RequestFeed feed(request);
    for (std::size_t begin = 0; begin < samples.size(); begin += bufferSize) {
        const auto frames = std::min(bufferSize, samples.size() - begin);
        feed.append({std::span(samples).subspan(begin, frames), sampleRate});
    }
    return endAndRead(*request);
}

TEST(RequestFeed, whenTheRatesAgree_handsTheSamplesOnAsTheyAre) {
    const auto samples = tone(16000, 440, 0.2);
    EXPECT_EQ(feedInBuffers(samples, 16000, 16000, 1024), samples);
}

TEST(RequestFeed, whenABufferHasNoRate_takesItForTheRequests) {
    const auto samples = tone(16000, 440, 0.1);
    EXPECT_EQ(feedInBuffers(samples, 0, 16000, 1024), samples);
}

TEST(RequestFeed, whenABufferIsEmpty_addsNothing) {
    EXPECT_THAT(feedInBuffers({}, 48000, 16000, 1024), IsEmpty());
    const auto request = std::make_shared<RecognitionRequest>(RecognitionSettings{}, 16000);
    RequestFeed feed(request);
    feed.append({{}, 48000});
    EXPECT_THAT(endAndRead(*request), IsEmpty());
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
} // namespace tovik
