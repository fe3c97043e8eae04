// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/PulseAudio/CaptureRelay.h"

#include <algorithm>
#include <span>
#include <utility>

namespace tovik {

namespace {

constexpr double kKeptSeconds = 10;

} // namespace

void CaptureRelay::installTap(std::size_t bufferSize, AudioTap tap) {
    const std::lock_guard lock(mutex_);
    buffer_.assign(std::max<std::size_t>(bufferSize, 1), 0);
    tap_.swap(tap);
}

void CaptureRelay::removeTap() {
    AudioTap dropped;
    const std::lock_guard lock(mutex_);
    dropped.swap(tap_);
}

CaptureRelay::Session CaptureRelay::open(bool ahead) {
    const std::lock_guard lock(mutex_);
    forget();
    phase_ = ahead ? Phase::ahead : Phase::delivering;
    return ++session_;
}

void CaptureRelay::close() {
    const std::lock_guard lock(mutex_);
    forget();
    phase_ = Phase::closed;
    ++session_;
}

void CaptureRelay::startDelivering() {
    const std::lock_guard lock(mutex_);
    if (phase_ == Phase::ahead) {
        phase_ = Phase::delivering;
    }
}

bool CaptureRelay::stopDelivering() {
    const std::lock_guard lock(mutex_);
    if (phase_ != Phase::delivering) {
        return false;
    }
    phase_ = Phase::ahead;
    return true;
}

void CaptureRelay::keepOnly(Seconds newest) {
    const std::lock_guard lock(mutex_);
    const auto wanted = static_cast<std::size_t>(std::max(newest.count(), 0.0) * sampleRate_);
    if (phase_ == Phase::ahead && count_ > wanted) {
        first_ = (first_ + count_ - wanted) % ring_.size();
        count_ = wanted;
    }
}

void CaptureRelay::flush() {
    while (true) {
        const std::lock_guard lock(mutex_);
        if (!handOverNext(1)) {
            return;
        }
    }
}

bool CaptureRelay::isDelivering() const {
    const std::lock_guard lock(mutex_);
    return phase_ == Phase::delivering;
}

bool CaptureRelay::isAhead() const {
    const std::lock_guard lock(mutex_);
    return phase_ == Phase::ahead;
}

bool CaptureRelay::isCurrent(Session session) const {
    const std::lock_guard lock(mutex_);
    return phase_ != Phase::closed && session_ == session;
}

void CaptureRelay::prepare(Session session, double sampleRate) {
    const auto size = static_cast<std::size_t>(sampleRate * kKeptSeconds);
    const std::lock_guard lock(mutex_);
    if (session_ != session) {
        return;
    }
    forget();
    sampleRate_ = sampleRate;
    if (ring_.size() != size) {
        ring_.assign(size, 0);
    }
}

void CaptureRelay::append(Session session, const float* samples, std::size_t frames,
                          std::size_t channelCount) {
    while (frames > 0) {
        const std::lock_guard lock(mutex_);
        const bool wanted = phase_ == Phase::ahead || (phase_ == Phase::delivering && tap_);
        if (session_ != session || !wanted || ring_.empty()) {
            return;
        }
        if (room() == 0) {
            // Kept for longer than anybody hesitates: the oldest goes.
            const auto dropped = std::min(frames, count_);
            first_ = (first_ + dropped) % ring_.size();
            count_ -= dropped;
        }
        const auto now = std::min(frames, room());
        put(samples, now, channelCount);
        frames -= now;
        if (samples != nullptr) {
            samples += now * channelCount;
        }
        while (handOverNext(buffer_.size())) {
        }
    }
}

void CaptureRelay::deliver(Session session) {
    while (true) {
        // Let go of between buffers, so that kept sound does not hold up the main thread.
        const std::lock_guard lock(mutex_);
        if (session_ != session || !handOverNext(buffer_.size())) {
            return;
        }
    }
}

void CaptureRelay::finish(Session session) {
    const std::lock_guard lock(mutex_);
    if (session_ != session || phase_ == Phase::closed) {
        return;
    }
    while (handOverNext(1)) {
    }
    forget();
    phase_ = Phase::closed;
}

void CaptureRelay::forget() {
    first_ = 0;
    count_ = 0;
}

void CaptureRelay::put(const float* samples, std::size_t frames, std::size_t channelCount) {
    auto place = (first_ + count_) % ring_.size();
    for (std::size_t frame = 0; frame < frames; ++frame) {
        ring_[place] = samples == nullptr ? 0.0F : samples[frame * channelCount];
        place = place + 1 == ring_.size() ? 0 : place + 1;
    }
    count_ += frames;
}

bool CaptureRelay::handOverNext(std::size_t atLeast) {
    if (phase_ != Phase::delivering || !tap_ || count_ < std::max<std::size_t>(atLeast, 1)) {
        return false;
    }
    handOver(std::min(buffer_.size(), count_));
    return true;
}

void CaptureRelay::handOver(std::size_t frames) {
    for (std::size_t frame = 0; frame < frames; ++frame) {
        buffer_[frame] = ring_[first_];
        first_ = first_ + 1 == ring_.size() ? 0 : first_ + 1;
    }
    count_ -= frames;
    tap_(AudioBuffer{std::span<const float>(buffer_.data(), frames), sampleRate_});
}

} // namespace tovik
