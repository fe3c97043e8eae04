// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/PocketSphinx/FrontEnd.h"

#include <sphinxbase/fe.h>

#include <algorithm>

namespace tovik {

std::unique_ptr<FrontEnd> FrontEnd::make(cmd_ln_s* configuration) {
    auto* const frontEnd = fe_init_auto_r(configuration);
    if (frontEnd == nullptr) {
        return nullptr;
    }
    std::unique_ptr<FrontEnd> made(new FrontEnd(frontEnd));
    if (fe_get_output_size(frontEnd) != static_cast<int>(Cepstrum{}.size())) {
        return nullptr;
    }
    return made;
}

FrontEnd::FrontEnd(fe_s* frontEnd) : frontEnd_(frontEnd) {}

FrontEnd::~FrontEnd() {
    fe_free(frontEnd_);
}

void FrontEnd::begin() {
    fe_start_stream(frontEnd_);
    fe_start_utt(frontEnd_);
}

void FrontEnd::process(std::span<const std::int16_t> samples, std::vector<Cepstrum>& frames) {
    // The library holds back what came just before speech, and gives it out with the first frame of it.
    constexpr int heldBack = 32;
    const std::int16_t* next = samples.data();
    std::size_t left = samples.size();
    while (left > 0) {
        std::int32_t most = 0;
        std::size_t ahead = left;
        fe_process_frames(frontEnd_, nullptr, &ahead, nullptr, &most, nullptr);
        const auto before = frames.size();
        frames.resize(before + static_cast<std::size_t>(most + heldBack));
        std::vector<float*> rows;
        rows.reserve(frames.size() - before);
        for (auto row = before; row < frames.size(); ++row) {
            rows.push_back(frames[row].data());
        }
        auto made = static_cast<std::int32_t>(rows.size());
        const auto leftBefore = left;
        fe_process_frames(frontEnd_, &next, &left, rows.data(), &made, nullptr);
        frames.resize(before + static_cast<std::size_t>(made));
        if (left == leftBefore) {
            return;
        }
    }
}

void FrontEnd::finish(std::vector<Cepstrum>& frames) {
    Cepstrum last{};
    std::int32_t made = 0;
    fe_end_utt(frontEnd_, last.data(), &made);
    if (made > 0) {
        frames.push_back(last);
    }
}

bool FrontEnd::inSpeech() const {
    return fe_get_vad_state(frontEnd_) != 0;
}

// ------------------------------------------------------------------------------ the mean

void CepstralMean::begin() {
    kept_.clear();
    given_ = false;
    sum_ = {};
    count_ = 0;
}

void CepstralMean::process(std::span<const Cepstrum> frames, Output& output) {
    output.startsOver = false;
    output.frames.clear();
    for (const auto& frame : frames) {
        take(frame, output);
    }
}

void CepstralMean::finish(Output& output) {
    output.startsOver = false;
    output.frames.clear();
    if (!given_) {
        estimate();
        giveAll(output);
    }
    if (count_ >= framesToRemember) {
        for (std::size_t i = 0; i < sum_.size(); ++i) {
            past_[i] = sum_[i] / static_cast<double>(count_);
        }
        hasPast_ = true;
    }
}

void CepstralMean::take(const Cepstrum& frame, Output& output) {
    for (std::size_t i = 0; i < frame.size(); ++i) {
        sum_[i] += static_cast<double>(frame[i]);
    }
    ++count_;
    if (count_ <= framesForMean) {
        kept_.push_back(frame);
    }
    if (count_ == framesForEstimate || count_ == framesForBetter || count_ == framesForMean) {
        estimate();
        giveAll(output);
    } else if (given_) {
        give(frame, output);
    }
}

void CepstralMean::estimate() {
    const auto heard = static_cast<double>(count_);
    const auto weight =
        hasPast_ ? weightOfPast * std::max(0.0, 1 - heard / static_cast<double>(framesForEstimate)) : 0;
    if (heard + weight <= 0) {
        return;
    }
    for (std::size_t i = 0; i < sum_.size(); ++i) {
        mean_[i] = (sum_[i] + weight * past_[i]) / (heard + weight);
    }
}

void CepstralMean::giveAll(Output& output) {
    output.startsOver = output.startsOver || given_;
    output.frames.clear();
    for (const auto& frame : kept_) {
        give(frame, output);
    }
    given_ = true;
}

void CepstralMean::give(const Cepstrum& frame, Output& output) const {
    Cepstrum normalised{};
    for (std::size_t i = 0; i < frame.size(); ++i) {
        normalised[i] = frame[i] - static_cast<float>(mean_[i]);
    }
    output.frames.push_back(normalised);
}

} // namespace tovik
