// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/AudioEngine.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <semaphore>
#include <span>
#include <string>
#include <vector>

namespace tovik {

/// What a recogniser is told of an utterance besides its sound.
struct RecognitionSettings {
    bool reportPartialResults = false;
    /// Words and phrases to favour; no duplicates, order without meaning.
    std::vector<std::string> contextualStrings;
    bool addPunctuation = false;
    enum class TaskHint { unspecified, dictation };
    TaskHint taskHint = TaskHint::unspecified;

    bool operator==(const RecognitionSettings&) const = default;
};

/// The sound of one utterance on its way from the microphone to a recogniser: one thread appends, another
/// reads. Holds capacitySeconds of sound that nobody has read yet; what does not fit is dropped
/// and counted, never waited for.
class RecognitionRequest {
public:
    static constexpr double capacitySeconds = 40;

    /// sampleRate: frames a second of all sound that will be appended. capacity: what may wait to be read, in
    /// seconds.
    RecognitionRequest(RecognitionSettings settings, double sampleRate, double capacity = capacitySeconds);
    ~RecognitionRequest();
    RecognitionRequest(const RecognitionRequest&) = delete;
    RecognitionRequest& operator=(const RecognitionRequest&) = delete;

    [[nodiscard]] const RecognitionSettings& settings() const { return settings_; }
    [[nodiscard]] double sampleRate() const { return sampleRate_; }

    /// From the audio thread: neither blocks nor allocates. Sound that comes after endAudio() is ignored.
    void append(const AudioBuffer& buffer);

    /// No more sound will come. Any thread; again is harmless.
    void endAudio();

    /// From the recogniser's thread: waits until there is sound or the end, then fills as much of `out` as
    /// there is. Returns the number of frames, 0 only at the end; nothing when the time is over.
    std::optional<std::size_t> readWithin(std::span<float> out, std::chrono::milliseconds timeout);

    /// Frames that nobody has read yet. Any thread.
    [[nodiscard]] std::size_t waitingFrames() const;

    /// Frames that found no room so far. Whoever appends them tells the user, once.
    [[nodiscard]] std::size_t droppedFrames() const { return dropped_.load(std::memory_order_relaxed); }

private:
    [[nodiscard]] std::optional<std::size_t> readWhatIsThere(std::span<float> out);

    const RecognitionSettings settings_;
    const double sampleRate_;
    const std::size_t capacity_;
    const std::unique_ptr<float[]> ring_;
    std::atomic<std::size_t> written_{0};
    std::atomic<std::size_t> consumed_{0};
    std::atomic<std::size_t> dropped_{0};
    std::atomic<bool> ended_{false};
    std::counting_semaphore<> arrivals_{0};
};

} // namespace tovik
