// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/PocketSphinx/FrontEnd.h"

#include <sphinxbase/fe.h>

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

} // namespace tovik
