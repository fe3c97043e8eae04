// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Audio/RecognitionRequest.h"

#include <algorithm>

namespace tovik {

RecognitionRequest::RecognitionRequest(RecognitionSettings settings, double sampleRate, double capacity)
    : settings_(std::move(settings)),
      sampleRate_(sampleRate),
      capacity_(static_cast<std::size_t>(sampleRate * capacity)),
      // Left uninitialised: the pages of a ring that is mostly empty are never touched.
      ring_(std::make_unique_for_overwrite<float[]>(capacity_)) {}

RecognitionRequest::~RecognitionRequest() = default;

void RecognitionRequest::append(const AudioBuffer& buffer) {
    if (ended_.load(std::memory_order_acquire)) {
        return;
    }
    const auto written = written_.load(std::memory_order_relaxed);
    const auto room = capacity_ - (written - consumed_.load(std::memory_order_acquire));
    const auto taken = std::min(room, buffer.frames.size());
    dropped_.fetch_add(buffer.frames.size() - taken, std::memory_order_relaxed);
    if (taken == 0) {
        return;
    }

    const auto begin = written % capacity_;
    const auto untilWrap = std::min(taken, capacity_ - begin);
    std::copy_n(buffer.frames.begin(), untilWrap, ring_.get() + begin);
    std::copy_n(buffer.frames.begin() + static_cast<std::ptrdiff_t>(untilWrap), taken - untilWrap,
                ring_.get());
    written_.store(written + taken, std::memory_order_release);
    arrivals_.release();
}

void RecognitionRequest::endAudio() {
    if (!ended_.exchange(true, std::memory_order_acq_rel)) {
        arrivals_.release();
    }
}

std::size_t RecognitionRequest::waitingFrames() const {
    // In this order the difference cannot become negative: what is read was written before.
    const auto consumed = consumed_.load(std::memory_order_acquire);
    return written_.load(std::memory_order_acquire) - consumed;
}

std::optional<std::size_t> RecognitionRequest::readWithin(std::span<float> out,
                                                          std::chrono::milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    for (;;) {
        if (const auto count = readWhatIsThere(out)) {
            return count;
        }
        // An arrival may be one whose sound was read already: then the wait goes on.
        if (!arrivals_.try_acquire_until(deadline)) {
            return readWhatIsThere(out);
        }
    }
}

/// Nothing when there is neither sound nor the end.
std::optional<std::size_t> RecognitionRequest::readWhatIsThere(std::span<float> out) {
    // The order matters: sound that was appended before the end must be seen once the end is.
    const bool ended = ended_.load(std::memory_order_acquire);
    const auto consumed = consumed_.load(std::memory_order_relaxed);
    const auto available = written_.load(std::memory_order_acquire) - consumed;
    const auto taken = std::min(available, out.size());
    if (taken == 0) {
        return ended || out.empty() ? std::optional<std::size_t>(0) : std::nullopt;
    }
    const auto begin = consumed % capacity_;
    const auto untilWrap = std::min(taken, capacity_ - begin);
    std::copy_n(ring_.get() + begin, untilWrap, out.begin());
    std::copy_n(ring_.get(), taken - untilWrap, out.begin() + static_cast<std::ptrdiff_t>(untilWrap));
    consumed_.store(consumed + taken, std::memory_order_release);
    return taken;
}

} // namespace tovik
