// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/FakeAudioEngine.h"

#include <algorithm>

namespace tovik::test {

AudioFormat FakeAudioEngine::inputFormat() const {
    return format_;
}

bool FakeAudioEngine::isRunning() const {
    const std::lock_guard lock(mutex_);
    return running_;
}

void FakeAudioEngine::note(const std::string& call) {
    calls_.push_back(call);
    if (observer_) {
        observer_(call);
    }
}

void FakeAudioEngine::installTap(std::size_t bufferSize, AudioTap tap) {
    note("installTap(" + std::to_string(bufferSize) + ")");
    const std::lock_guard lock(mutex_);
    bufferSize_ = bufferSize;
    tap_ = std::move(tap);
}

void FakeAudioEngine::removeTap() {
    note("removeTap");
    const std::lock_guard lock(mutex_);
    tap_ = nullptr;
}

void FakeAudioEngine::prepare() {
    note("prepare");
}

Result<void> FakeAudioEngine::start() {
    note("start");
    if (startError_) {
        return *startError_;
    }
    const std::lock_guard lock(mutex_);
    running_ = true;
    openAhead_ = false;
    deliver(lock, bufferSize_);
    return {};
}

void FakeAudioEngine::stop() {
    note("stop");
    const std::lock_guard lock(mutex_);
    running_ = false;
    openAhead_ = false;
    pending_.clear();
}

void FakeAudioEngine::openAhead() {
    note("openAhead");
    const std::lock_guard lock(mutex_);
    openAhead_ = !running_;
}

void FakeAudioEngine::listenOn() {
    note("listenOn");
    const std::lock_guard lock(mutex_);
    running_ = false;
    openAhead_ = true;
}

void FakeAudioEngine::keepOnly(Seconds newest) {
    const std::lock_guard lock(mutex_);
    const auto wanted = static_cast<std::size_t>(newest.count() * format_.sampleRate);
    if (openAhead_ && pending_.size() > wanted) {
        pending_.erase(pending_.begin(), pending_.end() - static_cast<std::ptrdiff_t>(wanted));
    }
}

void FakeAudioEngine::closeAhead() {
    note("closeAhead");
    const std::lock_guard lock(mutex_);
    if (openAhead_) {
        openAhead_ = false;
        pending_.clear();
    }
}

void FakeAudioEngine::flush() {
    note("flush");
    const std::lock_guard lock(mutex_);
    deliver(lock, 1);
}

void FakeAudioEngine::hear(std::span<const float> samples) {
    const std::lock_guard lock(mutex_);
    if (!running_ && !openAhead_) {
        return;
    }
    pending_.insert(pending_.end(), samples.begin(), samples.end());
    deliver(lock, bufferSize_);
}

void FakeAudioEngine::hearConstant(float value, std::size_t frames) {
    hear(std::vector<float>(frames, value));
}

void FakeAudioEngine::loseMicrophone() {
    const std::lock_guard lock(mutex_);
    running_ = false;
    pending_.clear();
}

bool FakeAudioEngine::hasTap() const {
    const std::lock_guard lock(mutex_);
    return tap_ != nullptr;
}

bool FakeAudioEngine::isOpenAhead() const {
    const std::lock_guard lock(mutex_);
    return openAhead_;
}

// The lock is held during the tap, so that stop() and removeTap() from another thread wait for it, as the
// port promises.
void FakeAudioEngine::deliver(const std::lock_guard<std::mutex>&, std::size_t smallest) {
    if (!running_ || !tap_ || bufferSize_ == 0) {
        return;
    }
    std::size_t done = 0;
    while (pending_.size() - done >= std::max<std::size_t>(smallest, 1)) {
        const auto frames = std::min(bufferSize_, pending_.size() - done);
        tap_(AudioBuffer{std::span(pending_).subspan(done, frames), format_.sampleRate});
        done += frames;
    }
    pending_.erase(pending_.begin(), pending_.begin() + static_cast<std::ptrdiff_t>(done));
}

} // namespace tovik::test
