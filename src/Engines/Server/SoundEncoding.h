// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"

#include <cstdint>
#include <span>
#include <string>

namespace tovik {

/// A sound file of one channel, as bytes. sampleRate: frames a second.
[[nodiscard]] std::string wavFile(std::span<const std::int16_t> samples, int sampleRate);

/// The same without loss in about half the bytes.
[[nodiscard]] Result<std::string> flacFile(std::span<const std::int16_t> samples, int sampleRate);

} // namespace tovik
