// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Audio/MacAudioManager.h"
#include "support/Allocations.h"
#include "support/FakeSoundDevices.h"
#include "support/FakeSpeechService.h"
#include "support/ManualTime.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>

namespace tovik::test {
namespace {

/// Keeps the tap, so that a test can call nothing but it.
class TapKeeper : public AudioEngine {
public:
    [[nodiscard]] AudioFormat inputFormat() const override { return {16000, 1}; }
    [[nodiscard]] bool isRunning() const override { return running_; }
    void installTap(std::size_t, AudioTap tap) override { tap_ = std::move(tap); }
    void removeTap() override { tap_ = nullptr; }
    void prepare() override {}
    Result<void> start() override {
        running_ = true;
        return {};
    }
    void stop() override { running_ = false; }
    void openAhead() override {}
    void listenOn() override { stop(); }
    void keepOnly(Seconds) override {}
    void closeAhead() override {}
    void flush() override {}

    [[nodiscard]] const AudioTap& tap() const { return tap_; }

private:
    AudioTap tap_;
    bool running_ = false;
};

TEST(Tap, whileABufferIsHandled_allocatesNothing) {
    ManualTime time;
    RecordingLog log;
    MemoryUserDefaults defaults;
    TapKeeper engine;
    FakeCaptureDevices devices;
    FakeAudioHardware hardware;
    FakeSpeechService speech;
    float lastLevel = 0;
    MacAudioManager manager({time, time, log, defaults, engine, devices, hardware, speech},
                            {.processTranscription = [](const std::string& text) { return text; },
                             .onTranscription = nullptr,
                             .onPartialUpdate = nullptr,
                             .onLevel = [&lastLevel](float level) { lastLevel = level; }});
    ASSERT_TRUE(manager.start().ok());
    std::array<float, 1024> frames{};
    frames.fill(0.5F);

    // As long as a recognizer may be behind before the request needs more memory than it was made with.
    const auto hear = [&](int buffers) {
        const auto before = allocationsOfThisThread();
        for (int buffer = 0; buffer < buffers; ++buffer) {
            // Also what must be converted.
            engine.tap()({frames, buffer % 10 == 0 ? 48000.0 : 16000.0});
        }
        return allocationsOfThisThread() - before;
    };
    EXPECT_EQ(hear(600), 0);
    EXPECT_GT(lastLevel, 0.9F);
    // Beyond that a block for each second, and nothing is lost.
    EXPECT_LE(hear(1000), 64);
    EXPECT_EQ(speech.lastUtterance()->request().droppedFrames(), 0U);
}

TEST(Tap, whenSomethingAllocates_theCounterNotices) {
    const auto before = allocationsOfThisThread();
    const auto text = std::make_unique<std::array<char, 100>>();
    EXPECT_NE(text, nullptr);
    EXPECT_GT(allocationsOfThisThread(), before);
}

} // namespace
} // namespace tovik::test
