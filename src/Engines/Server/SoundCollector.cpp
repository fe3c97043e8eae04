// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Server/SoundCollector.h"

#include "Engines/Host/Resampler.h"
#include "Engines/Server/TranscriptionRequest.h"

#include <array>
#include <chrono>
#include <utility>

namespace tovik {

namespace {

/// How often a thread that waits for sound looks whether it is still wanted.
constexpr std::chrono::milliseconds kLookUp{100};
constexpr auto kMostSamples = static_cast<std::size_t>(SoundCollector::mostSeconds * kTranscriptionRate);

} // namespace

SoundCollector::SoundCollector() : thread_([this] { run(); }) {}

SoundCollector::~SoundCollector() {
    {
        const std::lock_guard lock(mutex_);
        leaving_ = true;
    }
    wake_.notify_all();
    thread_.join();
}

void SoundCollector::collect(std::shared_ptr<Utterance> utterance, Collected collected) {
    {
        const std::lock_guard lock(mutex_);
        jobs_.push_back({std::move(utterance), std::move(collected)});
    }
    wake_.notify_all();
}

bool SoundCollector::isLeaving() {
    const std::lock_guard lock(mutex_);
    return leaving_;
}

void SoundCollector::run() {
    for (;;) {
        Job job;
        {
            std::unique_lock lock(mutex_);
            wake_.wait(lock, [this] { return leaving_ || !jobs_.empty(); });
            if (leaving_) {
                return;
            }
            job = std::move(jobs_.front());
            jobs_.pop_front();
        }
        if (!collect(job)) {
            return;
        }
    }
}

bool SoundCollector::collect(Job& job) {
    auto resampler = Resampler::make(job.utterance->request().sampleRate(), kTranscriptionRate);
    if (!resampler) {
        job.collected(resampler.error());
        return true;
    }
    Sound sound;
    std::array<float, 4096> frames{};
    for (;;) {
        // Asked before reading: what was appended before the request was let go of is then read first.
        const bool abandoned = job.utterance->requestAbandoned();
        const auto count = job.utterance->request().readWithin(frames, kLookUp);
        if (isLeaving()) {
            return false;
        }
        if ((count && *count == 0) || (!count && abandoned)) {
            break;
        }
        if (count && sound.samples.size() < kMostSamples) {
            resampler.value()->process(std::span(frames).first(*count), sound.samples);
        } else if (count) {
            sound.isCutOff = true;
        }
    }
    resampler.value()->finish(sound.samples);
    job.collected(std::move(sound));
    return true;
}

} // namespace tovik
