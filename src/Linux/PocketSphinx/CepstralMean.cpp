// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/PocketSphinx/CepstralMean.h"

namespace tovik {

void CepstralMean::begin() {
    held_.clear();
    settled_ = false;
    sum_ = {};
    count_ = 0;
}

void CepstralMean::process(std::span<const Cepstrum> frames, std::vector<Cepstrum>& normalised) {
    for (const auto& frame : frames) {
        for (std::size_t i = 0; i < frame.size(); ++i) {
            sum_[i] += static_cast<double>(frame[i]);
        }
        ++count_;
        if (settled_) {
            subtract(frame, normalised);
            continue;
        }
        held_.push_back(frame);
        if (held_.size() == framesHeldBack) {
            release(normalised);
        }
    }
}

void CepstralMean::finish(std::vector<Cepstrum>& normalised) {
    if (!settled_) {
        release(normalised);
    }
    if (count_ >= framesToRemember) {
        for (std::size_t i = 0; i < sum_.size(); ++i) {
            past_[i] = sum_[i] / static_cast<double>(count_);
        }
        hasPast_ = true;
    }
}

void CepstralMean::release(std::vector<Cepstrum>& normalised) {
    settled_ = true;
    const auto weight = hasPast_ ? weightOfPast : 0;
    const auto total = static_cast<double>(count_) + weight;
    if (total <= 0) {
        return;
    }
    for (std::size_t i = 0; i < sum_.size(); ++i) {
        mean_[i] = (sum_[i] + weight * past_[i]) / total;
    }
    for (const auto& frame : held_) {
        subtract(frame, normalised);
    }
    held_.clear();
}

void CepstralMean::subtract(const Cepstrum& frame, std::vector<Cepstrum>& normalised) const {
    Cepstrum result{};
    for (std::size_t i = 0; i < frame.size(); ++i) {
        result[i] = frame[i] - static_cast<float>(mean_[i]);
    }
    normalised.push_back(result);
}

} // namespace tovik
