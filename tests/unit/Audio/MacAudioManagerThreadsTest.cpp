// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "AudioManagerFixture.h"

#include <atomic>
#include <latch>
#include <semaphore>
#include <thread>

namespace tovik::test {
namespace {

using testing::ElementsAre;

class MacAudioManagerThreads : public AudioManagerFixture {};

TEST_F(MacAudioManagerThreads, whenARecognizerAnswersOnItsOwnThread_theTextArrivesThere) {
    speech.answerWith("hello");
    std::binary_semaphore arrived(0);
    std::thread::id thread;
    callbacks.onTranscription = [&](const std::string& text) {
        finals.push_back(text);
        thread = std::this_thread::get_id();
        arrived.release();
    };
    startRecording();
    engine.hearConstant(0.5F, 4096);
    manager().stop();
    arrived.acquire();
    EXPECT_THAT(finals, ElementsAre("<hello>"));
    EXPECT_NE(thread, std::this_thread::get_id());
}

TEST_F(MacAudioManagerThreads, whenSoundArrivesOnItsOwnThread_levelsArriveThere) {
    std::thread::id thread;
    callbacks.onLevel = [&](float level) {
        levels.push_back(level);
        thread = std::this_thread::get_id();
    };
    startRecording();
    std::thread microphone([&] { engine.hearConstant(1.0F, 1024); });
    const auto expected = microphone.get_id();
    microphone.join();
    EXPECT_THAT(levels, ElementsAre(1.0F));
    EXPECT_EQ(thread, expected);
}

TEST_F(MacAudioManagerThreads, whenDestroyedDuringACallback_waitsForItsEnd) {
    std::latch entered(1);
    std::binary_semaphore goOn(0);
    std::atomic<bool> callbackEnded{false};
    callbacks.onTranscription = [&](const std::string&) {
        entered.count_down();
        goOn.acquire();
        callbackEnded = true;
    };
    startRecording();
    const auto utterance = speech.lastUtterance();
    manager().stop();
    std::thread recognizer([&] { utterance->deliverFinal("hello"); });
    entered.wait();
    std::thread release([&] { goOn.release(); });
    destroyManager();
    EXPECT_TRUE(callbackEnded);
    release.join();
    recognizer.join();
}

TEST_F(MacAudioManagerThreads, whenResultsRaceWithTheEnd_noneArrivesAfterIt) {
    std::atomic<bool> gone{false};
    std::atomic<int> afterTheEnd{0};
    callbacks.onPartialUpdate = [&](const std::string&) { afterTheEnd += gone ? 1 : 0; };
    startRecording();
    const auto utterance = speech.lastUtterance();
    std::atomic<bool> enough{false};
    std::latch talking(1);
    std::thread recognizer([&] {
        utterance->deliverPartial("first");
        talking.count_down();
        while (!enough) {
            utterance->deliverPartial("more");
        }
    });
    talking.wait();
    destroyManager();
    gone = true;
    for (int delivery = 0; delivery < 100; ++delivery) {
        utterance->deliverPartial("late");
    }
    enough = true;
    recognizer.join();
    EXPECT_EQ(afterTheEnd, 0);
}

TEST_F(MacAudioManagerThreads, whenStoppedWhileSoundArrives_theRequestEndsCleanly) {
    speech.answerWith("hello");
    std::binary_semaphore arrived(0);
    callbacks.onTranscription = [&](const std::string&) { arrived.release(); };
    callbacks.onLevel = nullptr;
    startRecording();
    std::atomic<bool> enough{false};
    std::latch heard(1);
    std::thread microphone([&] {
        engine.hearConstant(0.5F, 1500);
        heard.count_down();
        while (!enough) {
            engine.hearConstant(0.5F, 100);
        }
    });
    heard.wait();
    manager().stop();
    arrived.acquire();
    enough = true;
    microphone.join();
    EXPECT_FALSE(engine.hasTap());
}

} // namespace
} // namespace tovik::test
