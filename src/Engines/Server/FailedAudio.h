// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"

#include <cstdint>
#include <span>
#include <string>

namespace tovik {

/// The sound of dictations that could not be recognised, as WAV files that only the user can read. One
/// thread.
class FailedAudio {
public:
    /// More than these are not kept: the oldest go first.
    static constexpr std::size_t mostFiles = 20;

    explicit FailedAudio(std::string folder) : folder_(std::move(folder)) {}

    /// Returns the file.
    Result<std::string> keep(std::span<const std::int16_t> samples, int sampleRate);
    /// Removes what was kept, also by an earlier run of the program.
    void forgetAll();

private:
    const std::string folder_;
};

} // namespace tovik
