// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/AudioEngine.h"

#include <functional>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tovik::test {

/// A microphone that hears what a test tells it. The tap runs inside hear(), start() and flush(), on the
/// thread of their caller. hear() is for any thread.
class FakeAudioEngine : public AudioEngine {
public:
    FakeAudioEngine() = default;

    [[nodiscard]] AudioFormat inputFormat() const override;
    [[nodiscard]] bool isRunning() const override;
    void installTap(std::size_t bufferSize, AudioTap tap) override;
    void removeTap() override;
    void prepare() override;
    Result<void> start() override;
    void stop() override;
    void openAhead() override;
    void listenOn() override;
    void keepOnly(Seconds newest) override;
    void closeAhead() override;
    void flush() override;

    /// Somebody speaks: goes to the tap in buffers of the installed size while running, is kept while the
    /// microphone is open ahead, and is lost otherwise.
    void hear(std::span<const float> samples);
    /// Every buffer of the tap's size that is due, of one value throughout.
    void hearConstant(float value, std::size_t frames);

    void setInputFormat(AudioFormat format) { format_ = format; }
    /// What the next calls of start() come to.
    void failStarts(Error error) { startError_ = std::move(error); }
    void letStartsSucceed() { startError_.reset(); }
    /// The microphone goes away: no more buffers, not running.
    void loseMicrophone();

    /// "installTap(1024)", "removeTap", "prepare", "start", "stop", "openAhead", "listenOn", "closeAhead",
    /// "flush", in the order of the calls.
    [[nodiscard]] const std::vector<std::string>& calls() const { return calls_; }
    void forgetCalls() { calls_.clear(); }
    /// Called at the beginning of each of these operations, with the text that calls() gets. To join the
    /// engine's calls with others in one record, or to look at the world at that moment.
    void onCall(std::function<void(const std::string&)> observer) { observer_ = std::move(observer); }

    [[nodiscard]] bool hasTap() const;
    [[nodiscard]] bool isOpenAhead() const;

private:
    void note(const std::string& call);
    void deliver(const std::lock_guard<std::mutex>& held, std::size_t smallest);

    mutable std::mutex mutex_;
    AudioFormat format_{16000, 1};
    std::optional<Error> startError_;
    AudioTap tap_;
    std::size_t bufferSize_ = 0;
    bool running_ = false;
    bool openAhead_ = false;
    std::vector<float> pending_;
    std::vector<std::string> calls_;
    std::function<void(const std::string&)> observer_;
};

} // namespace tovik::test
