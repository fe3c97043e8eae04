// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/Allocations.h"
#include "support/SoundRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <map>

namespace {

using namespace tovik;
using namespace tovik::test;

class PulseAudioEngineOn : public testing::TestWithParam<SoundServer::Kind> {
protected:
    PulseAudioEngineOn() : server(GetParam()) { server.start(); }

    VirtualMicrophone& plugIn(unsigned sampleRate = 48000, unsigned channelCount = 1) {
        auto& microphone = server.plugIn("mike", "Mike", sampleRate, channelCount);
        server.setDefaultSource("mike");
        return microphone;
    }
    bool isOpen() { return !server.control({"list", "short", "source-outputs"}).empty(); }

    SoundServer server;
    Listener listener;
};

TEST_P(PulseAudioEngineOn, recordsAtTheSourcesOwnRate) {
    for (const unsigned rate : {16000U, 44100U, 48000U, 96000U}) {
        auto& microphone = plugIn(rate);
        SoundRig rig(server);
        ASSERT_TRUE(rig.waitForDefault("mike"));
        EXPECT_EQ(rig.engine.inputFormat(), (AudioFormat{static_cast<double>(rate), 1}));
        rig.engine.installTap(1024, listener.tap());
        ASSERT_TRUE(rig.engine.start().ok());
        ASSERT_TRUE(listener.waitFor(rate / 10));
        const auto before = microphone.frames();
        ASSERT_TRUE(listener.waitForMore(rate / 2));
        EXPECT_NEAR(static_cast<double>(microphone.frames() - before), rate / 2.0, rate / 10.0);
        EXPECT_EQ(listener.rate(), rate);
        rig.engine.stop();
        listener.forget();
        server.unplug("mike");
    }
}

TEST_P(PulseAudioEngineOn, aRateThatOnlyStudiosUse_isBroughtDown) {
    plugIn(192000);
    SoundRig rig(server);
    ASSERT_TRUE(rig.waitForDefault("mike"));
    EXPECT_EQ(rig.engine.inputFormat(), (AudioFormat{48000, 1}));
    rig.engine.installTap(1024, listener.tap());
    ASSERT_TRUE(rig.engine.start().ok());
    ASSERT_TRUE(listener.waitFor(24000));
    EXPECT_EQ(listener.rate(), 48000);
}

TEST_P(PulseAudioEngineOn, ofSeveralChannels_onlyTheFirstIsHeard) {
    auto& microphone = plugIn(48000, 2);
    SoundRig rig(server);
    ASSERT_TRUE(rig.waitForDefault("mike"));
    std::vector<float> word(9600);
    for (std::size_t frame = 0; frame < word.size(); ++frame) {
        word[frame] = static_cast<float>(100 + frame) / 32768.0F;
    }
    rig.engine.installTap(1024, listener.tap());
    ASSERT_TRUE(rig.engine.start().ok());
    ASSERT_TRUE(listener.waitFor(4800));
    microphone.speak(word);
    EXPECT_TRUE(eventually([&] { return listener.heard(word); }));
}

TEST_P(PulseAudioEngineOn, missesNoFrameOfALongRecording) {
    auto& microphone = plugIn();
    SoundRig rig(server);
    ASSERT_TRUE(rig.waitForDefault("mike"));
    microphone.count();
    rig.engine.installTap(1024, listener.tap());
    ASSERT_TRUE(rig.engine.start().ok());
    ASSERT_TRUE(listener.waitFor(std::size_t{5} * 48000));
    rig.engine.stop();
    const auto sound = listener.withoutSilence();
    std::map<std::size_t, std::uint64_t> missingAt;
    for (std::size_t frame = 0; frame + 1 < sound.size(); ++frame) {
        const auto step = (VirtualMicrophone::numberOf(sound[frame + 1]) + VirtualMicrophone::countedFrames -
                           VirtualMicrophone::numberOf(sound[frame])) %
                          VirtualMicrophone::countedFrames;
        // One number of every turn is written as silence.
        if (step != 1 && step != 2) {
            missingAt[frame] = step - 1;
        }
    }
    EXPECT_GT(sound.size(), std::size_t{4} * 48000);
    if (GetParam() == SoundServer::Kind::pulseAudio) {
        EXPECT_THAT(missingAt, testing::IsEmpty());
    } else {
        // PipeWire itself skips a cycle of 256 frames when the machine is too busy for it, which it is for a
        // server without real-time priority.
        EXPECT_LE(missingAt.size(), 5U) << testing::PrintToString(missingAt);
    }
}

TEST_P(PulseAudioEngineOn, whatIsSpokenAtTheMomentOfOpening_isHeardFromTheFirstHundredths) {
    auto& microphone = plugIn();
    SoundRig rig(server);
    ASSERT_TRUE(rig.waitForDefault("mike"));
    // Every sample tells its place in the word.
    std::vector<float> word(9600);
    for (std::size_t frame = 0; frame < word.size(); ++frame) {
        word[frame] = static_cast<float>(100 + frame * 3) / 32768.0F;
    }
    rig.engine.installTap(1024, listener.tap());
    std::vector<std::size_t> cut;
    for (int round = 0; round < 20; ++round) {
        microphone.speak(word);
        rig.engine.openAhead();
        microphone.waitUntilSilent();
        ASSERT_TRUE(rig.engine.start().ok());
        ASSERT_TRUE(eventually([&] { return listener.heard({word.end() - 4800, word.end()}); }));
        // Its end must not be taken for the beginning of the next.
        ASSERT_TRUE(listener.waitForMore(9600));
        rig.engine.stop();
        const auto first = std::lround((listener.withoutSilence().front() * 32768.0F - 100) / 3);
        cut.push_back(static_cast<std::size_t>(std::max(first, 0L)));
        EXPECT_TRUE(listener.heard({word.begin() + first, word.end()}));
        listener.forget();
    }
    std::sort(cut.begin(), cut.end());
    // Nobody's lips move within four hundredths of a second of their finger; a busy machine may be late once.
    EXPECT_LT(cut[cut.size() / 2], 48U * 40);
    EXPECT_LT(cut.back(), 48U * 200);
}

TEST_P(PulseAudioEngineOn, theMicrophoneIsOpenOnlyFromOpeningToClosing) {
    plugIn();
    SoundRig rig(server);
    ASSERT_TRUE(rig.waitForDefault("mike"));
    EXPECT_FALSE(isOpen());
    rig.engine.openAhead();
    EXPECT_TRUE(eventually([&] { return isOpen(); }));
    rig.engine.closeAhead();
    EXPECT_TRUE(eventually([&] { return !isOpen(); }));
    ASSERT_TRUE(rig.engine.start().ok());
    EXPECT_TRUE(eventually([&] { return isOpen(); }));
    rig.engine.stop();
    EXPECT_TRUE(eventually([&] { return !isOpen(); }));
}

TEST_P(PulseAudioEngineOn, whenStartedBeforeTheServerHasAnswered_recordsAsSoonAsItHas) {
    auto& microphone = plugIn();
    SoundRig rig(server);
    rig.engine.installTap(1024, listener.tap());
    ASSERT_TRUE(rig.engine.start().ok());
    EXPECT_TRUE(rig.engine.isRunning());
    EXPECT_TRUE(listener.waitFor(4800));
    EXPECT_EQ(listener.rate(), microphone.sampleRate());
}

TEST_P(PulseAudioEngineOn, whenDestroyedWhileRecording_closesTheMicrophone) {
    plugIn();
    {
        SoundRig rig(server);
        ASSERT_TRUE(rig.waitForDefault("mike"));
        rig.engine.installTap(1024, listener.tap());
        ASSERT_TRUE(rig.engine.start().ok());
        ASSERT_TRUE(listener.waitFor(1024));
    }
    const auto heard = listener.samples().size();
    EXPECT_TRUE(eventually([&] { return !isOpen(); }));
    EXPECT_EQ(listener.samples().size(), heard);
}

TEST_P(PulseAudioEngineOn, whileRecording_theCaptureThreadAllocatesNothing) {
    plugIn();
    SoundRig rig(server);
    ASSERT_TRUE(rig.waitForDefault("mike"));
    // The server tells of the source's waking up while the first buffers come, and that is looked into.
    constexpr int firstCounted = 100;
    constexpr int lastCounted = 250;
    std::atomic<int> buffers = 0;
    std::atomic<long> before = 0;
    std::atomic<long> after = 0;
    float sum = 0;
    rig.engine.installTap(1024, [&](const AudioBuffer& buffer) {
        for (const float sample : buffer.frames) {
            sum += sample * sample;
        }
        const int count = ++buffers;
        if (count == firstCounted) {
            before = allocationsOfThisThread();
        } else if (count == lastCounted) {
            after = allocationsOfThisThread();
        }
    });
    ASSERT_TRUE(rig.engine.start().ok());
    ASSERT_TRUE(eventually([&] { return buffers > lastCounted; }));
    EXPECT_EQ(after - before, 0);
    rig.engine.stop();
}

INSTANTIATE_TEST_SUITE_P(Servers, PulseAudioEngineOn,
                         testing::Values(SoundServer::Kind::pulseAudio, SoundServer::Kind::pipeWire),
                         [](const auto& kind) { return nameOf(kind.param); });

} // namespace
