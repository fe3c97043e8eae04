// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Server/SoundEncoding.h"

#include "Engines/Host/RecognitionError.h"

#include <FLAC/stream_encoder.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace tovik {

namespace {

constexpr int kBytesPerSample = 2;
/// Fast; the stronger levels save little speech.
constexpr unsigned kCompression = 3;
constexpr std::size_t kSamplesAtOnce = 65536;

void appendNumber(std::string& bytes, std::uint32_t number, int size) {
    for (int i = 0; i < size; ++i) {
        bytes += static_cast<char>(number >> (8 * i) & 0xFF);
    }
}

/// What the encoder writes; it comes back to the beginning at the end.
struct Output {
    std::string bytes;
    std::size_t position = 0;
};

FLAC__StreamEncoderWriteStatus write(const FLAC__StreamEncoder*, const FLAC__byte* buffer, std::size_t size,
                                     std::uint32_t, std::uint32_t, void* client) {
    auto& output = *static_cast<Output*>(client);
    output.bytes.resize(std::max(output.bytes.size(), output.position + size));
    std::copy_n(buffer, size, output.bytes.begin() + static_cast<std::ptrdiff_t>(output.position));
    output.position += size;
    return FLAC__STREAM_ENCODER_WRITE_STATUS_OK;
}

FLAC__StreamEncoderSeekStatus seek(const FLAC__StreamEncoder*, FLAC__uint64 offset, void* client) {
    static_cast<Output*>(client)->position = offset;
    return FLAC__STREAM_ENCODER_SEEK_STATUS_OK;
}

FLAC__StreamEncoderTellStatus tell(const FLAC__StreamEncoder*, FLAC__uint64* offset, void* client) {
    *offset = static_cast<Output*>(client)->position;
    return FLAC__STREAM_ENCODER_TELL_STATUS_OK;
}

struct DeleteEncoder {
    void operator()(FLAC__StreamEncoder* encoder) const { FLAC__stream_encoder_delete(encoder); }
};

} // namespace

std::string wavFile(std::span<const std::int16_t> samples, int sampleRate) {
    const auto size = static_cast<std::uint32_t>(samples.size() * kBytesPerSample);
    const auto rate = static_cast<std::uint32_t>(sampleRate);
    std::string bytes;
    bytes.reserve(44 + size);
    bytes += "RIFF";
    appendNumber(bytes, 36 + size, 4);
    bytes += "WAVEfmt ";
    appendNumber(bytes, 16, 4);
    appendNumber(bytes, 1, 2);
    appendNumber(bytes, 1, 2);
    appendNumber(bytes, rate, 4);
    appendNumber(bytes, rate * kBytesPerSample, 4);
    appendNumber(bytes, kBytesPerSample, 2);
    appendNumber(bytes, 8 * kBytesPerSample, 2);
    bytes += "data";
    appendNumber(bytes, size, 4);
    for (const auto sample : samples) {
        appendNumber(bytes, static_cast<std::uint16_t>(sample), kBytesPerSample);
    }
    return bytes;
}

Result<std::string> flacFile(std::span<const std::int16_t> samples, int sampleRate) {
    const auto failed = recognitionError(RecognitionCode::failed, "The sound could not be encoded as FLAC");
    const std::unique_ptr<FLAC__StreamEncoder, DeleteEncoder> encoder(FLAC__stream_encoder_new());
    if (!encoder) {
        return failed;
    }
    FLAC__stream_encoder_set_channels(encoder.get(), 1);
    FLAC__stream_encoder_set_bits_per_sample(encoder.get(), 8 * kBytesPerSample);
    FLAC__stream_encoder_set_sample_rate(encoder.get(), static_cast<unsigned>(sampleRate));
    FLAC__stream_encoder_set_compression_level(encoder.get(), kCompression);
    FLAC__stream_encoder_set_total_samples_estimate(encoder.get(), samples.size());
    Output output;
    if (FLAC__stream_encoder_init_stream(encoder.get(), write, seek, tell, nullptr, &output) !=
        FLAC__STREAM_ENCODER_INIT_STATUS_OK) {
        return failed;
    }
    std::vector<FLAC__int32> wide;
    for (std::size_t at = 0; at < samples.size(); at += kSamplesAtOnce) {
        const auto some = samples.subspan(at, std::min(kSamplesAtOnce, samples.size() - at));
        wide.assign(some.begin(), some.end());
        if (!FLAC__stream_encoder_process_interleaved(encoder.get(), wide.data(),
                                                      static_cast<unsigned>(wide.size()))) {
            return failed;
        }
    }
    if (!FLAC__stream_encoder_finish(encoder.get())) {
        return failed;
    }
    return std::move(output.bytes);
}

} // namespace tovik
