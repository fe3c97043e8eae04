// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Audio/RecognitionRequest.h"

#include <chrono>
#include <cstddef>
#include <span>
#include <stdexcept>
#include <vector>

namespace tovik::test {

/// Waits until there is sound or the end, and gives the number of frames, 0 only at the end. Throws when a
/// test would hang instead.
inline std::size_t readSome(RecognitionRequest& request, std::span<float> out) {
    if (const auto count = request.readWithin(out, std::chrono::seconds(60))) {
        return *count;
    }
    throw std::runtime_error("neither sound nor its end came");
}

/// Everything up to the end, so many frames at a time.
inline std::vector<float> readAll(RecognitionRequest& request, std::size_t atOnce = 4096) {
    std::vector<float> all;
    std::vector<float> some(atOnce);
    while (const auto count = readSome(request, some)) {
        all.insert(all.end(), some.begin(), some.begin() + static_cast<std::ptrdiff_t>(count));
    }
    return all;
}

} // namespace tovik::test
