// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/AudioEngine.h"
#include "SoundFile.h"

#include <functional>
#include <stop_token>
#include <thread>

namespace tovik {

/// A microphone that hears a recording: each start() plays it from its beginning through the tap, on a
/// thread of its own.
class FileAudioEngine : public AudioEngine {
public:
    enum class Pace { asFastAsAllowed, realTime };

    /// waitForRoom is called before every buffer, on the playing thread, and returns when the listener can
    /// take it; false ends the playing. In real time it is not called, as no microphone would.
    FileAudioEngine(Pace pace, std::function<bool(std::stop_token)> waitForRoom);
    ~FileAudioEngine() override;

    /// What the next start() plays.
    void load(SoundFile sound);
    /// Returns when all of it went through the tap.
    void waitUntilPlayed();

    [[nodiscard]] AudioFormat inputFormat() const override;
    [[nodiscard]] bool isRunning() const override { return running_; }
    void installTap(std::size_t bufferSize, AudioTap tap) override;
    void removeTap() override;
    void prepare() override {}
    Result<void> start() override;
    void stop() override;
    void openAhead() override {}
    void listenOn() override { stop(); }
    void keepOnly(Seconds) override {}
    void closeAhead() override {}
    void flush() override {}

private:
    void play(const std::stop_token& stopped);

    const Pace pace_;
    const std::function<bool(std::stop_token)> waitForRoom_;
    SoundFile sound_;
    std::size_t bufferSize_ = 0;
    AudioTap tap_;
    bool running_ = false;
    std::jthread player_;
};

} // namespace tovik
