// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string>

namespace tovik {

/// The whole seconds since a moment, never below 0.
[[nodiscard]] inline std::int64_t elapsedSeconds(Date startedAt, Date now) {
    return std::max<std::int64_t>(std::chrono::duration_cast<std::chrono::seconds>(now - startedAt).count(),
                                  0);
}

/// Minutes and seconds, from an hour on also hours: "0:07", "12:34", "1:00:05". Below 0 counts as 0.
[[nodiscard]] inline std::string formattedElapsedTime(std::int64_t seconds) {
    const auto twoDigits = [](std::int64_t number) {
        return (number < 10 ? "0" : "") + std::to_string(number);
    };
    seconds = std::max<std::int64_t>(seconds, 0);
    const auto hours = seconds / 3600;
    const auto minutes = seconds % 3600 / 60;
    return (hours == 0 ? std::to_string(minutes) : std::to_string(hours) + ":" + twoDigits(minutes)) + ":" +
           twoDigits(seconds % 60);
}

} // namespace tovik
