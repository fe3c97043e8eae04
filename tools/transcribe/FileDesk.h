// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/AudioEngine.h"
#include "Platform/MainQueue.h"
#include "Platform/SystemLog.h"

#include <cstdio>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace tovik {

// The surroundings of a dictation that has no desktop: the audio manager asks for them, and a file needs
// none.

class NoCaptureDevices : public CaptureDevices {
public:
    [[nodiscard]] std::vector<CaptureDevice> devices() const override { return {}; }
    [[nodiscard]] std::optional<std::string> defaultDeviceId() const override { return std::nullopt; }
    [[nodiscard]] Subscription onConnected(std::function<void(const CaptureDevice&)>) override { return {}; }
    [[nodiscard]] Subscription onDisconnected(std::function<void(const CaptureDevice&)>) override {
        return {};
    }
};

class NoAudioHardware : public AudioHardware {
public:
    [[nodiscard]] Result<std::vector<std::uint32_t>> deviceIds() const override {
        return std::vector<std::uint32_t>{};
    }
    [[nodiscard]] std::optional<std::string> deviceName(std::uint32_t) const override { return std::nullopt; }
};

/// Nothing is ever due later: what the audio manager queues is about microphones that come and go.
class WaitingMainQueue : public MainQueue {
public:
    void async(std::function<void()> work) override {
        const std::lock_guard lock(mutex_);
        work_.push_back(std::move(work));
    }
    /// Does what was queued before this call.
    void run() {
        std::unique_lock lock(mutex_);
        const auto work = std::exchange(work_, {});
        lock.unlock();
        for (const auto& one : work) {
            one();
        }
    }
    void asyncAfter(Seconds, std::function<void()>) override {}
    [[nodiscard]] Subscription after(Seconds, std::function<void()>) override { return {}; }
    [[nodiscard]] Subscription every(Seconds, std::function<void()>) override { return {}; }

private:
    std::mutex mutex_;
    std::vector<std::function<void()>> work_;
};

class WallClock : public Clock {
public:
    [[nodiscard]] Date now() const override { return std::chrono::system_clock::now(); }
    void pause(Seconds duration) override { std::this_thread::sleep_for(duration); }
};

/// Everything goes to standard error, since standard output belongs to the transcripts; the program's
/// ordinary lines only when asked for.
class ErrorStreamLog : public SystemLog {
public:
    explicit ErrorStreamLog(bool verbose) : verbose_(verbose) {}

    void printLine(std::string_view line) override {
        if (verbose_) {
            logLine(line);
        }
    }
    void logLine(std::string_view line) override {
        const auto text = std::string(line) + "\n";
        std::fputs(text.c_str(), stderr);
    }

private:
    const bool verbose_;
};

} // namespace tovik
