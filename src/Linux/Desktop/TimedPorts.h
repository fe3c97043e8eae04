// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/Desktop/TimingMarks.h"
#include "Platform/AudioEngine.h"
#include "Platform/KeyMonitor.h"
#include "Platform/SystemLog.h"

namespace tovik {

// Wrappers around ports that leave marks and change nothing else.

/// Marks "key-down" and "key-up" of the talk key.
class TimedKeyMonitor : public KeyMonitor {
public:
    TimedKeyMonitor(KeyMonitor& monitor, TimingMarks& marks) : monitor_(monitor), marks_(marks) {}

    Result<void> start(Handlers handlers) override;

private:
    KeyMonitor& monitor_;
    TimingMarks& marks_;
};

/// Marks "first-sample" at the end of each recording that heard anything, with the moment at which its first
/// frame was captured.
class TimedAudioEngine : public AudioEngine {
public:
    TimedAudioEngine(AudioEngine& engine, TimingMarks& marks) : engine_(engine), marks_(marks) {}

    [[nodiscard]] AudioFormat inputFormat() const override { return engine_.inputFormat(); }
    [[nodiscard]] bool isRunning() const override { return engine_.isRunning(); }
    void installTap(std::size_t bufferSize, AudioTap tap) override {
        engine_.installTap(bufferSize, std::move(tap));
    }
    void removeTap() override { engine_.removeTap(); }
    void prepare() override { engine_.prepare(); }
    Result<void> start() override { return engine_.start(); }
    void stop() override;
    void openAhead() override { engine_.openAhead(); }
    void closeAhead() override { engine_.closeAhead(); }
    void flush() override { engine_.flush(); }
    [[nodiscard]] std::optional<std::chrono::steady_clock::time_point> firstFrameCapturedAt() const override {
        return engine_.firstFrameCapturedAt();
    }

private:
    AudioEngine& engine_;
    TimingMarks& marks_;
};

/// Marks "ready" at the end of the launch, "final-text" when a final text arrives and "pasted" when the paste
/// has been pressed.
class TimedLog : public SystemLog {
public:
    TimedLog(SystemLog& log, TimingMarks& marks) : log_(log), marks_(marks) {}

    void printLine(std::string_view line) override;
    void logLine(std::string_view line) override;

private:
    SystemLog& log_;
    TimingMarks& marks_;
};

} // namespace tovik
