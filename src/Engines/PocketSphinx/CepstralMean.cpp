// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/PocketSphinx/CepstralMean.h"

#include <algorithm>

namespace tovik {

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
