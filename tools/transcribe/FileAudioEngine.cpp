// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "FileAudioEngine.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <span>
#include <utility>

namespace tovik {

FileAudioEngine::FileAudioEngine(Pace pace, std::function<bool(std::stop_token)> waitForRoom)
    : pace_(pace),
      waitForRoom_(std::move(waitForRoom)) {}

FileAudioEngine::~FileAudioEngine() {
    stop();
}

void FileAudioEngine::load(SoundFile sound) {
    sound_ = std::move(sound);
}

void FileAudioEngine::waitUntilPlayed() {
    if (player_.joinable()) {
        player_.join();
    }
}

AudioFormat FileAudioEngine::inputFormat() const {
    return {sound_.sampleRate, 1};
}

void FileAudioEngine::installTap(std::size_t bufferSize, AudioTap tap) {
    bufferSize_ = bufferSize;
    tap_ = std::move(tap);
}

void FileAudioEngine::removeTap() {
    stop();
    tap_ = nullptr;
}

Result<void> FileAudioEngine::start() {
    if (!running_) {
        running_ = true;
        player_ = std::jthread([this](const std::stop_token& stopped) { play(stopped); });
    }
    return {};
}

void FileAudioEngine::stop() {
    player_.request_stop();
    waitUntilPlayed();
    running_ = false;
}

void FileAudioEngine::play(const std::stop_token& stopped) {
    if (!tap_ || bufferSize_ == 0) {
        return;
    }
    std::mutex mutex;
    std::condition_variable_any pacing;
    const auto begin = std::chrono::steady_clock::now();
    const std::span<const float> frames(sound_.frames);
    for (std::size_t at = 0; at < frames.size(); at += bufferSize_) {
        const auto buffer = frames.subspan(at, std::min(bufferSize_, frames.size() - at));
        if (pace_ == Pace::realTime) {
            // A microphone gives a buffer once it has heard the last frame of it.
            const std::chrono::duration<double> heard(static_cast<double>(at + buffer.size()) /
                                                      sound_.sampleRate);
            std::unique_lock lock(mutex);
            pacing.wait_until(lock, stopped,
                              begin + std::chrono::duration_cast<std::chrono::nanoseconds>(heard),
                              [] { return false; });
        } else if (!waitForRoom_(stopped)) {
            return;
        }
        if (stopped.stop_requested()) {
            return;
        }
        tap_({buffer, sound_.sampleRate});
    }
}

} // namespace tovik
