// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Host/Dictation.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tovik {

namespace {

/// Sound between two looks at the hypothesis: a quarter of a second.
constexpr auto kSamplesBetweenLooks = static_cast<std::size_t>(kEngineRate / 4);
/// Little, so that each is answered soon, as a sign of life.
constexpr std::size_t kSamplesAtOnce = 2048;
constexpr std::size_t kFramesAtOnce = 4096;

} // namespace

Dictation::Dictation(std::shared_ptr<RecognitionRequest> request, RecognitionHandler handler)
    : request_(std::move(request)),
      handler_(std::move(handler)) {
    auto resampler = Resampler::make(request_->sampleRate(), kEngineRate);
    if (resampler) {
        resampler_ = std::move(resampler.value());
    } else {
        trouble_ = resampler.error();
        isComplete_ = true;
    }
}

void Dictation::hear(std::chrono::milliseconds atMost) {
    std::array<float, kFramesAtOnce> frames{};
    while (!isComplete_) {
        // Asked before reading: what was appended before the request was let go of is then read first.
        const bool isAbandoned = request_.use_count() == 1;
        const auto count = request_->readWithin(frames, std::exchange(atMost, std::chrono::milliseconds(0)));
        if (count && *count > 0) {
            resampler_->process(std::span(frames).first(*count), samples_);
        } else if (count || isAbandoned) {
            resampler_->finish(samples_);
            isComplete_ = true;
        } else {
            return;
        }
    }
}

void Dictation::feed(ModelProcess& process) {
    if (!std::exchange(isBegun_, true)) {
        process.ask(Frame::begin, packStrings(request_->settings().contextualStrings));
    }
    while (sent_ < samples_.size() && !process.isBehind()) {
        const auto count = std::min(kSamplesAtOnce, samples_.size() - sent_);
        process.ask(Frame::sound, packSamples(std::span(samples_).subspan(sent_, count)));
        sent_ += count;
        if (request_->settings().reportPartialResults && sent_ - sentAtLook_ >= kSamplesBetweenLooks) {
            sentAtLook_ = sent_;
            process.ask(Frame::hypothesis, "");
        }
    }
    if (isComplete_ && sent_ == samples_.size() && !std::exchange(isFinished_, true)) {
        process.ask(Frame::finish, "");
    }
}

int Dictation::rewind() {
    sent_ = 0;
    sentAtLook_ = 0;
    isBegun_ = false;
    isFinished_ = false;
    return ++failures_;
}

void Dictation::takeHypothesis(const std::string& text) {
    if (!text.empty() && text != partial_) {
        partial_ = text;
        handler_(RecognitionResult{text, false}, std::nullopt);
    }
}

void Dictation::answer(const std::string& text) {
    handler_(RecognitionResult{text, true}, std::nullopt);
}

void Dictation::answer(const Error& error) {
    handler_(std::nullopt, error);
}

} // namespace tovik
