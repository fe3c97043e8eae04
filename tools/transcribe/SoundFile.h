// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"

#include <string>
#include <vector>

namespace tovik {

/// A recording on disk, held in memory.
struct SoundFile {
    /// Channel 0, in -1...1.
    std::vector<float> frames;
    /// Frames a second.
    double sampleRate = 0;

    [[nodiscard]] double seconds() const { return static_cast<double>(frames.size()) / sampleRate; }

    /// The error is a sentence for the user.
    [[nodiscard]] static Result<SoundFile> read(const std::string& path);
};

} // namespace tovik
