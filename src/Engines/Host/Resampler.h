// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace tovik {

/// Turns a stream of samples of any rate into 16-bit samples of another one.
class Resampler {
public:
    /// Rates in frames a second, both above zero.
    [[nodiscard]] static Result<std::unique_ptr<Resampler>> make(double inputRate, double outputRate);
    ~Resampler();
    Resampler(const Resampler&) = delete;
    Resampler& operator=(const Resampler&) = delete;

    /// Appends to `output` what can be told of the new rate so far; the last few milliseconds come with the
    /// next call.
    void process(std::span<const float> input, std::vector<std::int16_t>& output);

    /// Appends the rest. Nothing may be processed afterwards.
    void finish(std::vector<std::int16_t>& output);

private:
    struct Stream;
    explicit Resampler(std::unique_ptr<Stream> stream);

    const std::unique_ptr<Stream> stream_;
};

} // namespace tovik
