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

/// What a recognizer is told of an utterance besides its sound.
struct RecognitionSettings {
    bool reportPartialResults = false;
    /// Words and phrases to favour; no duplicates, order without meaning.
    std::vector<std::string> contextualStrings;
    bool addPunctuation = false;
    enum class TaskHint { unspecified, dictation };
    TaskHint taskHint = TaskHint::unspecified;

    bool operator==(const RecognitionSettings&) const = default;
};

/// The sound of one utterance on its way from the microphone to a recognizer: one thread appends, another
/// reads. Whatever was not read yet is kept, as when a model takes its time to load: 230 MB for an hour at
/// 16 kHz. More than that is dropped and counted, never waited for.
class RecognitionRequest {
public:
    /// What may wait to be read: by then somebody has forgotten a hands-free recording.
    static constexpr double capacitySeconds = 3600;
    /// What may wait before append() needs memory of its own.
    static constexpr double reserveSeconds = 40;

    /// sampleRate: frames a second in which the sound is read. capacity: in seconds.
    RecognitionRequest(RecognitionSettings settings, double sampleRate, double capacity = capacitySeconds);
    ~RecognitionRequest();
    RecognitionRequest(const RecognitionRequest&) = delete;
    RecognitionRequest& operator=(const RecognitionRequest&) = delete;

    [[nodiscard]] const RecognitionSettings& settings() const { return settings_; }
    [[nodiscard]] double sampleRate() const { return sampleRate_; }

    /// From the audio thread: never blocks. Allocates nothing while the reader is less than reserveSeconds
    /// behind, and one block for each 16384 frames beyond. Sound that comes after endAudio() is ignored.
    ///
    /// The microphone may come to another rate than it promised: a headset that takes over in the very moment
    /// of a start. Such sound is converted; a buffer without a rate has the request's.
    void append(const AudioBuffer& buffer);

    /// No more sound will come. Any thread; again is harmless.
    void endAudio();

    /// From the recognizer's thread: waits until there is sound or the end, then fills as much of `out` as
    /// there is. Returns the number of frames, 0 only at the end; nothing when the time is over.
    std::optional<std::size_t> readWithin(std::span<float> out, std::chrono::milliseconds timeout);

    /// Frames that nobody has read yet. Any thread.
    [[nodiscard]] std::size_t waitingFrames() const;

    /// Frames that found no room so far. Whoever appends them tells the user, once.
    [[nodiscard]] std::size_t droppedFrames() const { return dropped_.load(std::memory_order_relaxed); }

private:
    struct Block;

    void keep(std::span<const float> frames);
    void keepConverted(const AudioBuffer& buffer);
    [[nodiscard]] bool beginBlock();
    [[nodiscard]] std::optional<std::size_t> readWhatIsThere(std::span<float> out);
    void releaseReadBlock();

    const RecognitionSettings settings_;
    const double sampleRate_;
    const std::size_t capacity_;

    // The blocks of sound form a list, oldest first. The writer's and the reader's ends of it are told apart
    // by written_ and consumed_, which also publish what stands in the blocks.
    const std::unique_ptr<Block[]> reserve_;
    Block* first_ = nullptr; ///< written once, before the first sound is published
    std::atomic<std::size_t> written_{0};
    std::atomic<std::size_t> consumed_{0};
    std::atomic<std::size_t> dropped_{0};
    std::atomic<bool> ended_{false};
    /// Blocks that were read to their end, on their way back to the writer.
    std::atomic<Block*> returned_{nullptr};
    std::counting_semaphore<> arrivals_{0};

    // The writer's own.
    Block* last_ = nullptr;
    std::size_t reserveLeft_;
    Block* spare_ = nullptr;
    Block* allocated_ = nullptr;
    /// Where the next converted frame lies, in frames of the coming buffer; -1 is the last frame before it.
    double position_ = 0;
    float lastFrame_ = 0;

    // The reader's own.
    Block* reading_ = nullptr;
};

} // namespace tovik
