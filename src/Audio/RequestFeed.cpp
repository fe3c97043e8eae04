// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Audio/RequestFeed.h"

#include "Audio/RecognitionRequest.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

namespace tovik {

RequestFeed::RequestFeed(std::shared_ptr<RecognitionRequest> request) : request_(std::move(request)) {}

void RequestFeed::append(const AudioBuffer& buffer) {
    if (buffer.frames.empty()) {
        return;
    }
    if (buffer.sampleRate == request_->sampleRate() || buffer.sampleRate <= 0) {
        request_->append(buffer);
    } else {
        convert(buffer);
    }
}

// Straight lines between the frames: plain, and good enough for the few recordings that need it.
void RequestFeed::convert(const AudioBuffer& buffer) {
    std::array<float, 512> converted;
    std::size_t count = 0;
    const auto flush = [&] {
        request_->append({std::span(converted).first(count), request_->sampleRate()});
        count = 0;
    };
    const double step = buffer.sampleRate / request_->sampleRate();
    const auto size = static_cast<double>(buffer.frames.size());
    for (; position_ < size - 1; position_ += step) {
        const double whole = std::floor(position_);
        const float before = whole < 0 ? lastFrame_ : buffer.frames[static_cast<std::size_t>(whole)];
        const float after = buffer.frames[static_cast<std::size_t>(whole + 1)];
        converted[count++] = before + (after - before) * static_cast<float>(position_ - whole);
        if (count == converted.size()) {
            flush();
        }
    }
    flush();
    position_ -= size;
    lastFrame_ = buffer.frames.back();
}

} // namespace tovik
