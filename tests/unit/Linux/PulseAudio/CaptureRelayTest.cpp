// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/PulseAudio/CaptureRelay.h"

#include "support/Allocations.h"

#include <gtest/gtest.h>

#include <atomic>
#include <numeric>
#include <thread>
#include <vector>

namespace {

using namespace tovik;

/// Samples that count upwards.
std::vector<float> counted(std::size_t frames, float first = 0) {
    std::vector<float> samples(frames);
    std::iota(samples.begin(), samples.end(), first);
    return samples;
}

class CaptureRelayTest : public testing::Test {
protected:
    static constexpr double kRate = 8000;

    void listen(std::size_t bufferSize) {
        relay.installTap(bufferSize, [this](const AudioBuffer& buffer) {
            sizes.push_back(buffer.frames.size());
            heard.insert(heard.end(), buffer.frames.begin(), buffer.frames.end());
            rate = buffer.sampleRate;
        });
    }
    CaptureRelay::Session open(bool ahead) {
        const auto session = relay.open(ahead);
        relay.prepare(session, kRate);
        return session;
    }
    void hear(CaptureRelay::Session session, const std::vector<float>& samples) {
        relay.append(session, samples.data(), samples.size(), 1);
    }

    CaptureRelay relay;
    std::vector<std::size_t> sizes;
    std::vector<float> heard;
    double rate = 0;
};

TEST_F(CaptureRelayTest, whatComesInOddPieces_leavesInBuffersOfTheTapsSize) {
    listen(100);
    const auto session = open(false);
    hear(session, counted(70));
    EXPECT_TRUE(sizes.empty());
    hear(session, counted(250, 70));
    EXPECT_EQ(sizes, (std::vector<std::size_t>{100, 100, 100}));
    EXPECT_EQ(heard, counted(300));
    EXPECT_EQ(rate, kRate);
    relay.flush();
    EXPECT_EQ(sizes.back(), 20U);
    EXPECT_EQ(heard, counted(320));
}

TEST_F(CaptureRelayTest, ofSeveralChannels_onlyTheFirstIsCarried) {
    listen(2);
    const auto session = open(false);
    const std::vector<float> interleaved{1, 9, 2, 9, 3, 9, 4, 9};
    relay.append(session, interleaved.data(), 4, 2);
    EXPECT_EQ(heard, (std::vector<float>{1, 2, 3, 4}));
}

TEST_F(CaptureRelayTest, aHoleInTheStream_isSilenceOfItsLength) {
    listen(4);
    const auto session = open(false);
    relay.append(session, nullptr, 4, 2);
    EXPECT_EQ(heard, (std::vector<float>{0, 0, 0, 0}));
}

TEST_F(CaptureRelayTest, whileAhead_keepsTheNewestTenSeconds) {
    listen(1000);
    const auto session = open(true);
    for (int second = 0; second < 25; ++second) {
        hear(session, counted(8000, static_cast<float>(second) * 8000));
    }
    EXPECT_TRUE(heard.empty());
    relay.startDelivering();
    relay.deliver(session);
    relay.flush();
    ASSERT_FALSE(heard.empty());
    EXPECT_EQ(heard.size(), 80000U);
    EXPECT_EQ(heard.back(), 199999.0F);
    EXPECT_EQ(heard.front(), 120000.0F);
}

TEST_F(CaptureRelayTest, whenDeliveringStops_whatComesIsKeptForTheNextTap) {
    listen(100);
    const auto session = open(false);
    hear(session, counted(130));
    relay.flush();
    EXPECT_TRUE(relay.stopDelivering());
    EXPECT_FALSE(relay.isDelivering());
    relay.removeTap();
    hear(session, counted(250, 130));
    EXPECT_EQ(heard, counted(130));
    listen(100);
    relay.startDelivering();
    relay.flush();
    EXPECT_EQ(heard, counted(380));
    relay.close();
    EXPECT_FALSE(relay.stopDelivering());
}

TEST_F(CaptureRelayTest, ofWhatIsKept_onlyTheNewestMayBeWanted) {
    listen(100);
    const auto session = open(true);
    hear(session, counted(1000));
    relay.keepOnly(Seconds(1));
    relay.keepOnly(Seconds(400 / kRate));
    hear(session, counted(100, 1000));
    relay.startDelivering();
    relay.keepOnly(Seconds(0));
    relay.flush();
    EXPECT_EQ(heard, counted(500, 600));
}

TEST_F(CaptureRelayTest, whatComesUnderAnOlderNumber_isDropped) {
    listen(10);
    const auto before = open(false);
    relay.close();
    const auto session = open(false);
    hear(before, counted(100));
    relay.finish(before);
    EXPECT_TRUE(heard.empty());
    EXPECT_TRUE(relay.isDelivering());
    hear(session, counted(10));
    EXPECT_EQ(heard, counted(10));
}

TEST_F(CaptureRelayTest, whenTheMicrophoneIsGone_theRestIsHandedOver_andTheSessionEnds) {
    listen(100);
    const auto session = open(false);
    hear(session, counted(130));
    relay.finish(session);
    EXPECT_EQ(heard, counted(130));
    EXPECT_FALSE(relay.isDelivering());
    EXPECT_FALSE(relay.isCurrent(session));
    hear(session, counted(1000));
    EXPECT_EQ(heard.size(), 130U);
}

TEST_F(CaptureRelayTest, withoutATap_whatIsHeardWhileDeliveringIsDropped) {
    const auto session = open(false);
    hear(session, counted(500));
    listen(10);
    hear(session, counted(10, 7));
    EXPECT_EQ(heard, counted(10, 7));
}

TEST_F(CaptureRelayTest, anHourOfSound_takesNoMemory) {
    std::size_t buffers = 0;
    float last = 0;
    relay.installTap(1024, [&](const AudioBuffer& buffer) {
        ++buffers;
        last = buffer.frames.back();
    });
    const auto session = open(false);
    const auto chunk = counted(480);
    const auto before = test::allocationsOfThisThread();
    for (int turn = 0; turn < 60 * 60 * 100; ++turn) {
        relay.append(session, chunk.data(), chunk.size(), 1);
    }
    EXPECT_EQ(test::allocationsOfThisThread(), before);
    EXPECT_EQ(buffers, std::size_t{3600} * 48000 / 1024);
    EXPECT_GE(last, 0);
}

TEST_F(CaptureRelayTest, whenClosed_theTapIsNotBeingCalledAnyMore) {
    for (int round = 0; round < 200; ++round) {
        std::atomic<bool> allowed = true;
        std::atomic<bool> late = false;
        std::atomic<int> calls = 0;
        relay.installTap(16, [&](const AudioBuffer&) {
            ++calls;
            late = late || !allowed;
        });
        const auto session = open(false);
        std::atomic<bool> ending = false;
        std::thread hearing([&] {
            const auto chunk = counted(160);
            while (!ending) {
                relay.append(session, chunk.data(), chunk.size(), 1);
            }
        });
        while (calls == 0) {
            std::this_thread::yield();
        }
        if (round % 2 == 0) {
            relay.close();
        } else {
            relay.removeTap();
        }
        allowed = false;
        const int before = calls;
        relay.flush();
        ending = true;
        hearing.join();
        EXPECT_FALSE(late);
        EXPECT_EQ(calls, before);
        relay.close();
        relay.removeTap();
    }
}

} // namespace
