// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/ElapsedTime.h"

#include <algorithm>

namespace tovik {

namespace {

constexpr std::int64_t kSecondsInMinute = 60;
constexpr std::int64_t kSecondsInHour = 3600;

std::string twoDigits(std::int64_t number) {
    return (number < 10 ? "0" : "") + std::to_string(number);
}

} // namespace

std::int64_t elapsedSeconds(Date startedAt, Date now) {
    return std::max<std::int64_t>(std::chrono::duration_cast<std::chrono::seconds>(now - startedAt).count(),
                                  0);
}

std::string formattedElapsedTime(std::int64_t seconds) {
    seconds = std::max<std::int64_t>(seconds, 0);
    const auto hours = seconds / kSecondsInHour;
    const auto minutes = seconds % kSecondsInHour / kSecondsInMinute;
    const auto rest = twoDigits(seconds % kSecondsInMinute);
    if (hours == 0) {
        return std::to_string(minutes) + ":" + rest;
    }
    return std::to_string(hours) + ":" + twoDigits(minutes) + ":" + rest;
}

} // namespace tovik
