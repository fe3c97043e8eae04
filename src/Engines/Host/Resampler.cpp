// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Host/Resampler.h"

#include "Engines/Host/RecognitionError.h"

#include <soxr.h>

#include <cmath>
#include <string>

namespace tovik {

struct Resampler::Stream {
    soxr_t soxr = nullptr;
    double ratio = 1;

    ~Stream() { soxr_delete(soxr); }
};

Result<std::unique_ptr<Resampler>> Resampler::make(double inputRate, double outputRate) {
    if (!(inputRate > 0) || !(outputRate > 0)) {
        return recognitionError(RecognitionCode::failed, "The microphone has no sample rate");
    }
    soxr_error_t error = nullptr;
    auto format = soxr_io_spec(SOXR_FLOAT32_I, SOXR_INT16_I);
    // The same sound shall give the same text every time.
    format.flags |= SOXR_NO_DITHER;
    const auto quality = soxr_quality_spec(SOXR_HQ, 0);
    auto stream = std::make_unique<Stream>();
    stream->ratio = outputRate / inputRate;
    stream->soxr = soxr_create(inputRate, outputRate, 1, &error, &format, &quality, nullptr);
    if (stream->soxr == nullptr || error != nullptr) {
        return recognitionError(RecognitionCode::failed, std::string("The sound cannot be resampled: ") +
                                                             (error != nullptr ? error : "out of memory"));
    }
    return std::unique_ptr<Resampler>(new Resampler(std::move(stream)));
}

Resampler::Resampler(std::unique_ptr<Stream> stream) : stream_(std::move(stream)) {}

Resampler::~Resampler() = default;

void Resampler::process(std::span<const float> input, std::vector<std::int16_t>& output) {
    while (!input.empty()) {
        const auto before = output.size();
        const auto room =
            static_cast<std::size_t>(std::ceil(static_cast<double>(input.size()) * stream_->ratio)) + 64;
        output.resize(before + room);
        std::size_t used = 0;
        std::size_t made = 0;
        const auto error = soxr_process(stream_->soxr, input.data(), input.size(), &used,
                                        output.data() + before, room, &made);
        output.resize(before + made);
        if (error != nullptr || (used == 0 && made == 0)) {
            return;
        }
        input = input.subspan(used);
    }
}

void Resampler::finish(std::vector<std::int16_t>& output) {
    constexpr std::size_t room = 4096;
    for (;;) {
        const auto before = output.size();
        output.resize(before + room);
        std::size_t made = 0;
        const auto error =
            soxr_process(stream_->soxr, nullptr, 0, nullptr, output.data() + before, room, &made);
        output.resize(before + made);
        if (error != nullptr || made == 0) {
            return;
        }
    }
}

} // namespace tovik
