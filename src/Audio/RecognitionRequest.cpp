// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Audio/RecognitionRequest.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <new>
#include <utility>

namespace tovik {

namespace {

constexpr std::size_t kBlockFrames = 16384;

std::size_t blocksOfReserve(double sampleRate) {
    return static_cast<std::size_t>(sampleRate * RecognitionRequest::reserveSeconds / kBlockFrames) + 2;
}

} // namespace

/// Nothing in it is initialised: the pages of a reserve that is mostly unused are never touched.
struct RecognitionRequest::Block {
    Block* next;
    Block* nextAllocated;
    std::array<float, kBlockFrames> frames;
};

RecognitionRequest::RecognitionRequest(RecognitionSettings settings, double sampleRate, double capacity)
    : settings_(std::move(settings)),
      sampleRate_(sampleRate),
      capacity_(static_cast<std::size_t>(sampleRate * capacity)),
      reserve_(std::make_unique_for_overwrite<Block[]>(blocksOfReserve(sampleRate))),
      reserveLeft_(blocksOfReserve(sampleRate)) {}

RecognitionRequest::~RecognitionRequest() {
    while (allocated_ != nullptr) {
        delete std::exchange(allocated_, allocated_->nextAllocated);
    }
}

void RecognitionRequest::append(const AudioBuffer& buffer) {
    if (ended_.load(std::memory_order_acquire) || buffer.frames.empty()) {
        return;
    }
    if (buffer.sampleRate == sampleRate_ || buffer.sampleRate <= 0) {
        keep(buffer.frames);
    } else {
        keepConverted(buffer);
    }
    arrivals_.release();
}

void RecognitionRequest::keep(std::span<const float> frames) {
    auto written = written_.load(std::memory_order_relaxed);
    const auto room = capacity_ - (written - consumed_.load(std::memory_order_acquire));
    auto left = frames.first(std::min(room, frames.size()));
    while (!left.empty()) {
        const auto place = written % kBlockFrames;
        if (place == 0 && !beginBlock()) {
            break;
        }
        const auto taken = std::min(left.size(), kBlockFrames - place);
        std::copy_n(left.begin(), taken, last_->frames.begin() + place);
        written += taken;
        left = left.subspan(taken);
    }
    const auto kept = written - written_.load(std::memory_order_relaxed);
    dropped_.fetch_add(frames.size() - kept, std::memory_order_relaxed);
    written_.store(written, std::memory_order_release);
}

/// False when there is no memory.
bool RecognitionRequest::beginBlock() {
    if (spare_ == nullptr) {
        spare_ = returned_.exchange(nullptr, std::memory_order_acquire);
    }
    Block* block = spare_;
    if (block != nullptr) {
        spare_ = block->next;
    } else if (reserveLeft_ > 0) {
        block = &reserve_[--reserveLeft_];
    } else if ((block = new (std::nothrow) Block) != nullptr) {
        block->nextAllocated = std::exchange(allocated_, block);
    } else {
        return false;
    }
    block->next = nullptr;
    (last_ != nullptr ? last_->next : first_) = block;
    last_ = block;
    return true;
}

// Straight lines between the frames: plain, and good enough for the few recordings that need it.
void RecognitionRequest::keepConverted(const AudioBuffer& buffer) {
    std::array<float, 512> converted;
    std::size_t count = 0;
    const double step = buffer.sampleRate / sampleRate_;
    const auto size = static_cast<double>(buffer.frames.size());
    for (; position_ < size - 1; position_ += step) {
        const double whole = std::floor(position_);
        const float before = whole < 0 ? lastFrame_ : buffer.frames[static_cast<std::size_t>(whole)];
        const float after = buffer.frames[static_cast<std::size_t>(whole + 1)];
        converted[count++] = before + (after - before) * static_cast<float>(position_ - whole);
        if (count == converted.size()) {
            keep(converted);
            count = 0;
        }
    }
    keep(std::span(converted).first(count));
    position_ -= size;
    lastFrame_ = buffer.frames.back();
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
    auto consumed = consumed_.load(std::memory_order_relaxed);
    const auto available = written_.load(std::memory_order_acquire) - consumed;
    auto left = out.first(std::min(available, out.size()));
    if (left.empty()) {
        return ended || out.empty() ? std::optional<std::size_t>(0) : std::nullopt;
    }
    const auto count = left.size();
    while (!left.empty()) {
        const auto place = consumed % kBlockFrames;
        if (place == 0) {
            releaseReadBlock();
        }
        const auto taken = std::min(left.size(), kBlockFrames - place);
        std::copy_n(reading_->frames.begin() + place, taken, left.begin());
        consumed += taken;
        left = left.subspan(taken);
    }
    consumed_.store(consumed, std::memory_order_release);
    return count;
}

/// Goes on to the next block, and gives the one that was read to its end back to the writer.
void RecognitionRequest::releaseReadBlock() {
    auto* block = std::exchange(reading_, reading_ != nullptr ? reading_->next : first_);
    if (block != nullptr) {
        block->next = returned_.load(std::memory_order_relaxed);
        while (!returned_.compare_exchange_weak(block->next, block, std::memory_order_release,
                                                std::memory_order_relaxed)) {
        }
    }
}

} // namespace tovik
