// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// What every microphone of the program does: the real one against both sound servers, and the one of the
// tests.
#include "contract/AudioEngineContract.h"

#include "support/FakeAudioEngine.h"
#include "support/SoundRig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <thread>

namespace {

using namespace tovik;
using namespace tovik::test;

class FakeWorld : public AudioEngineWorld {
public:
    AudioEngine& engine() override { return engine_; }
    void hear(const std::vector<float>& words) override { engine_.hear(words); }
    void waitUntilOpen() override {}
    void loseMicrophone() override {
        engine_.loseMicrophone();
        engine_.failStarts({"Fake", 1, "There is no microphone"});
    }
    void returnMicrophone() override { engine_.letStartsSucceed(); }
    void settle() override {}

private:
    FakeAudioEngine engine_;
};

class ServerWorld : public AudioEngineWorld {
public:
    explicit ServerWorld(SoundServer::Kind kind) : server_(kind), rig_(server_) {
        server_.start();
        returnMicrophone();
    }

    AudioEngine& engine() override { return rig_.engine; }

    void hear(const std::vector<float>& words) override {
        microphone_->speak(words);
        microphone_->waitUntilSilent();
        settle();
    }

    void waitUntilOpen() override {
        EXPECT_TRUE(eventually([this] {
            return server_.control({"list", "short", "source-outputs"}).find("float32le") !=
                   std::string::npos;
        }));
        settle();
    }

    void loseMicrophone() override {
        server_.unplug("mike");
        microphone_ = nullptr;
        EXPECT_TRUE(eventually([this] { return !rig_.devices.defaultDeviceId(); }));
    }

    void returnMicrophone() override {
        microphone_ = &server_.plugIn("mike", "Mike");
        server_.setDefaultSource("mike");
        EXPECT_TRUE(rig_.waitForDefault("mike"));
    }

    // Long after the servers' own latencies, which are some tens of milliseconds.
    void settle() override {
        if (microphone_ != nullptr) {
            const auto then = microphone_->frames() + microphone_->sampleRate() / 5;
            EXPECT_TRUE(eventually([&] { return microphone_->frames() >= then; }));
        }
    }

private:
    SoundServer server_;
    SoundRig rig_;
    VirtualMicrophone* microphone_ = nullptr;
};

bool isSilent(const std::vector<float>& samples) {
    return std::all_of(samples.begin(), samples.end(), [](float sample) { return std::abs(sample) < 1e-4F; });
}

class AudioEngineContract : public testing::TestWithParam<AudioEngineWorldKind> {
protected:
    void SetUp() override {
        world = GetParam().make();
        engine = &world->engine();
    }
    void TearDown() override {
        engine->stop();
        engine->removeTap();
    }

    void listen(std::size_t bufferSize = 1024) { engine->installTap(bufferSize, listener.tap()); }
    void start() {
        const auto started = engine->start();
        ASSERT_TRUE(started.ok()) << started.error().description;
        world->waitUntilOpen();
    }

    Listener listener;
    std::unique_ptr<AudioEngineWorld> world;
    AudioEngine* engine = nullptr;
};

TEST_P(AudioEngineContract, whenNothingWasAsked_isNotRunning) {
    EXPECT_FALSE(engine->isRunning());
    EXPECT_GT(engine->inputFormat().sampleRate, 0);
    EXPECT_GE(engine->inputFormat().channelCount, 1U);
}

TEST_P(AudioEngineContract, whenStarted_isRunningUntilStopped) {
    listen();
    start();
    EXPECT_TRUE(engine->isRunning());
    engine->stop();
    EXPECT_FALSE(engine->isRunning());
}

TEST_P(AudioEngineContract, whileRunning_handsTheTapWhatIsHeard_inWholeBuffersOfItsSize) {
    listen(1024);
    start();
    world->hear(words(5000));
    engine->flush();
    EXPECT_TRUE(listener.heard(words(5000)));
    auto sizes = listener.sizes();
    ASSERT_GE(sizes.size(), 2U);
    sizes.pop_back();
    EXPECT_TRUE(std::all_of(sizes.begin(), sizes.end(), [](std::size_t size) { return size == 1024; }));
}

TEST_P(AudioEngineContract, buffersCarryTheInputFormatsRate) {
    const auto rate = engine->inputFormat().sampleRate;
    listen();
    start();
    world->hear(words(3000));
    engine->flush();
    EXPECT_EQ(listener.rate(), rate);
}

TEST_P(AudioEngineContract, whenNotStarted_theTapHearsNothing) {
    listen();
    world->hear(words(3000));
    engine->flush();
    EXPECT_TRUE(listener.samples().empty());
}

TEST_P(AudioEngineContract, whenStartedTwice_goesOnAsBefore) {
    listen();
    start();
    EXPECT_TRUE(engine->start().ok());
    EXPECT_TRUE(engine->isRunning());
    world->hear(words(4000));
    engine->flush();
    EXPECT_TRUE(listener.heard(words(4000)));
}

TEST_P(AudioEngineContract, whenOpenedAhead_startHandsOverTheKeptSoundWithoutAGap) {
    engine->openAhead();
    world->waitUntilOpen();
    EXPECT_FALSE(engine->isRunning());
    auto whole = words(6000);
    world->hear(words(6000));
    listen();
    EXPECT_TRUE(listener.samples().empty());
    start();
    world->hear(words(6000, 1));
    engine->flush();
    EXPECT_TRUE(listener.heard(words(6000)));
    EXPECT_TRUE(listener.heard(words(6000, 1)));
}

TEST_P(AudioEngineContract, whenOpenedAheadTwice_keepsWhatWasHeardSinceTheFirst) {
    engine->openAhead();
    world->waitUntilOpen();
    world->hear(words(3000));
    engine->openAhead();
    listen();
    start();
    engine->flush();
    EXPECT_TRUE(listener.heard(words(3000)));
}

TEST_P(AudioEngineContract, whenClosedAhead_whatWasKeptIsForgotten) {
    engine->openAhead();
    world->waitUntilOpen();
    world->hear(words(3000));
    engine->closeAhead();
    listen();
    start();
    world->hear(words(3000, 1));
    engine->flush();
    EXPECT_FALSE(listener.heard(words(3000)));
    EXPECT_TRUE(listener.heard(words(3000, 1)));
}

TEST_P(AudioEngineContract, whenStoppedWhileAhead_whatWasKeptIsForgotten) {
    engine->openAhead();
    world->waitUntilOpen();
    world->hear(words(3000));
    engine->stop();
    listen();
    start();
    world->hear(words(3000, 1));
    engine->flush();
    EXPECT_FALSE(listener.heard(words(3000)));
}

TEST_P(AudioEngineContract, whenItListensOn_noSampleIsMissingInTheNextRecording) {
    listen();
    start();
    std::thread speaker([this] { world->hear(words(24000)); });
    EXPECT_TRUE(eventually([this] { return listener.samples().size() > 8000; }));
    engine->flush();
    engine->listenOn();
    EXPECT_FALSE(engine->isRunning());
    engine->removeTap();
    speaker.join();
    listen();
    start();
    engine->flush();
    EXPECT_TRUE(listener.heard(words(24000)));
}

TEST_P(AudioEngineContract, whenItListensOnAndIsClosed_whatWasKeptIsForgotten) {
    listen();
    start();
    engine->flush();
    engine->listenOn();
    world->hear(words(3000));
    engine->closeAhead();
    start();
    engine->flush();
    EXPECT_FALSE(listener.heard(words(3000)));
}

TEST_P(AudioEngineContract, whenNothingOfWhatWasKeptIsWanted_itIsForgotten) {
    engine->openAhead();
    world->waitUntilOpen();
    world->hear(words(3000));
    engine->keepOnly(Seconds(0));
    world->hear(words(3000, 1));
    engine->keepOnly(Seconds(10));
    listen();
    start();
    engine->flush();
    EXPECT_FALSE(listener.heard(words(3000)));
    EXPECT_TRUE(listener.heard(words(3000, 1)));
}

TEST_P(AudioEngineContract, whileRunning_openingAndClosingAheadChangeNothing) {
    listen();
    start();
    engine->openAhead();
    world->hear(words(3000));
    engine->closeAhead();
    EXPECT_TRUE(engine->isRunning());
    world->hear(words(3000, 1));
    engine->flush();
    EXPECT_TRUE(listener.heard(words(3000)));
    EXPECT_TRUE(listener.heard(words(3000, 1)));
}

TEST_P(AudioEngineContract, whenIdle_stoppingFlushingAndClosingAheadAreHarmless) {
    engine->stop();
    engine->flush();
    engine->closeAhead();
    engine->removeTap();
    engine->prepare();
    EXPECT_FALSE(engine->isRunning());
}

TEST_P(AudioEngineContract, flush_handsOverThePartOfABufferOnTheCallingThread) {
    std::atomic<bool> flushing = false;
    std::atomic<bool> elsewhere = false;
    const auto caller = std::this_thread::get_id();
    const auto tap = listener.tap();
    engine->installTap(100000, [&, tap](const AudioBuffer& buffer) {
        elsewhere = elsewhere || !flushing || std::this_thread::get_id() != caller;
        tap(buffer);
    });
    start();
    world->hear(words(4800));
    EXPECT_TRUE(listener.samples().empty());
    flushing = true;
    engine->flush();
    flushing = false;
    EXPECT_TRUE(listener.heard(words(4800)));
    EXPECT_FALSE(elsewhere);
}

TEST_P(AudioEngineContract, whenFlushed_theRecordingGoesOnWithoutRepeatingOrLosing) {
    listen();
    start();
    world->hear(words(4800));
    engine->flush();
    const auto before = listener.samples().size();
    world->hear(words(4800, 1));
    engine->flush();
    EXPECT_TRUE(listener.heard(words(4800)));
    EXPECT_TRUE(listener.heard(words(4800, 1)));
    const auto all = listener.samples();
    const auto first = words(4800).front();
    EXPECT_EQ(std::count_if(all.begin() + static_cast<std::ptrdiff_t>(before), all.end(),
                            [&](float sample) { return std::abs(sample - first) < 1e-5F; }),
              0);
}

TEST_P(AudioEngineContract, whenStopped_theTapIsNotCalledAgain) {
    listen();
    start();
    world->hear(words(3000));
    engine->stop();
    const auto heard = listener.sizes().size();
    world->hear(words(3000, 1));
    engine->flush();
    EXPECT_EQ(listener.sizes().size(), heard);
}

TEST_P(AudioEngineContract, whenTheTapIsRemoved_itIsNotCalledAgain) {
    listen();
    start();
    world->hear(words(3000));
    engine->removeTap();
    const auto heard = listener.sizes().size();
    world->hear(words(3000, 1));
    engine->flush();
    EXPECT_EQ(listener.sizes().size(), heard);
    EXPECT_TRUE(engine->isRunning());
}

TEST_P(AudioEngineContract, whenStoppedWithoutAFlush_theNextRecordingDoesNotBeginWithTheRest) {
    engine->installTap(100000, listener.tap());
    start();
    world->hear(words(4800));
    engine->stop();
    listener.forget();
    start();
    world->hear(words(4800, 1));
    engine->flush();
    EXPECT_FALSE(listener.heard(words(4800)));
    EXPECT_TRUE(listener.heard(words(4800, 1)));
}

TEST_P(AudioEngineContract, whenTheMicrophoneGoesAway_isNotRunning_andCanBeStartedWhenItIsBack) {
    listen();
    start();
    world->hear(words(5000));
    world->loseMicrophone();
    EXPECT_TRUE(eventually([this] { return !engine->isRunning(); }));
    EXPECT_TRUE(listener.heard(words(4000)));
    engine->stop();
    const auto failed = engine->start();
    ASSERT_FALSE(failed.ok());
    EXPECT_FALSE(failed.error().description.empty());
    EXPECT_FALSE(engine->isRunning());

    world->returnMicrophone();
    listener.forget();
    start();
    EXPECT_TRUE(engine->isRunning());
    world->hear(words(5000, 1));
    engine->flush();
    EXPECT_TRUE(listener.heard(words(5000, 1)));
}

TEST_P(AudioEngineContract, whenTheKeptSoundWasSilence_nothingElseIsHandedOver) {
    engine->openAhead();
    world->waitUntilOpen();
    listen();
    start();
    engine->flush();
    EXPECT_TRUE(isSilent(listener.samples()));
}

INSTANTIATE_TEST_SUITE_P(
    Engines, AudioEngineContract,
    testing::Values(
        AudioEngineWorldKind{"Fake", [] { return std::make_unique<FakeWorld>(); }},
        AudioEngineWorldKind{"PulseAudio",
                             [] { return std::make_unique<ServerWorld>(SoundServer::Kind::pulseAudio); }},
        AudioEngineWorldKind{"PipeWire",
                             [] { return std::make_unique<ServerWorld>(SoundServer::Kind::pipeWire); }}),
    [](const auto& kind) { return kind.param.name; });

} // namespace
