// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"

#include <cstdint>
#include <mutex>
#include <span>
#include <string>
#include <vector>

namespace tovik {

enum class SoundFormat {
    wav,
    /// The same without loss in about half the bytes.
    flac,
};

/// A sound file of one channel, as bytes. sampleRate: frames a second.
[[nodiscard]] Result<std::string> soundFile(std::span<const std::int16_t> samples, int sampleRate,
                                            SoundFormat format);

/// The sound of dictations that could not be recognized, as WAV files that only the user can read. Any
/// thread.
class FailedAudio {
public:
    /// More than these are not kept: the oldest go first.
    static constexpr std::size_t mostFiles = 20;

    explicit FailedAudio(std::string folder) : folder_(std::move(folder)) {}

    /// Returns the file.
    Result<std::string> keep(std::span<const std::int16_t> samples, int sampleRate);
    /// The files that are kept, also by an earlier run of the program.
    [[nodiscard]] std::vector<std::string> kept();
    void forget(const std::vector<std::string>& files);

private:
    const std::string folder_;
    std::mutex mutex_;
};

} // namespace tovik
