// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/AudioEngine.h"

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

namespace tovik {

/// Carries samples from the thread that hears them to the tap, in buffers of the tap's size. While opened
/// ahead it keeps them instead, the newest ten seconds, until delivering begins; while delivering without a
/// tap it drops them. Any thread, unless said otherwise. The tap is never called by two threads at once.
///
/// Every opening of the microphone has a number. What arrives under an older number is dropped, so a
/// microphone that is being closed can say no more.
class CaptureRelay {
public:
    using Session = std::uint64_t;

    void installTap(std::size_t bufferSize, AudioTap tap);
    /// When it returns, the tap is not being called and will not be.
    void removeTap();

    /// Begins a session; whatever was kept is forgotten.
    Session open(bool ahead);
    /// Ends the session; whatever was kept is forgotten. When it returns, the tap is not being called.
    void close();
    /// From now on the tap gets what comes, and before it what was kept: with the next samples, or earlier
    /// when deliver() or flush() is called.
    void startDelivering();
    /// The opposite: what comes from now on is kept. False when nothing was delivered.
    bool stopDelivering();
    /// Forgets what was kept, save for the newest.
    void keepOnly(Seconds newest);
    /// Hands everything to the tap, the last buffer perhaps shorter than the others.
    void flush();

    [[nodiscard]] bool isDelivering() const;
    [[nodiscard]] bool isAhead() const;
    /// Whether this session has not ended.
    [[nodiscard]] bool isCurrent(Session session) const;

    /// The three for the thread that hears. Makes room; the only one of them that allocates.
    void prepare(Session session, double sampleRate);
    /// Takes every channelCount-th sample; nothing is allocated. Null samples are silence.
    void append(Session session, const float* samples, std::size_t frames, std::size_t channelCount);
    /// Hands full buffers to the tap.
    void deliver(Session session);

    /// The microphone is gone: hands over what is left and ends the session.
    void finish(Session session);

private:
    enum class Phase { closed, ahead, delivering };

    [[nodiscard]] std::size_t room() const { return ring_.size() - count_; }
    void forget();
    void put(const float* samples, std::size_t frames, std::size_t channelCount);
    void handOver(std::size_t frames);
    bool handOverNext(std::size_t atLeast);

    mutable std::mutex mutex_;
    AudioTap tap_;
    std::vector<float> buffer_;
    Phase phase_ = Phase::closed;
    Session session_ = 0;
    double sampleRate_ = 0;
    std::vector<float> ring_;
    std::size_t first_ = 0;
    std::size_t count_ = 0;
};

} // namespace tovik
