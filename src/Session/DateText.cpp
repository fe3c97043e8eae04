// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/DateText.h"

#include <array>
#include <ctime>

namespace tovik {

namespace {

std::string inUtc(Date date, const char* format) {
    // Rounded down, so that a moment before 1970 with a fraction still names the second it lies in.
    const auto whole = std::chrono::floor<std::chrono::seconds>(date);
    const std::time_t seconds = std::chrono::system_clock::to_time_t(whole);
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    std::array<char, 64> text{};
    return {text.data(), std::strftime(text.data(), text.size(), format, &parts)};
}

} // namespace

std::string internetDateTime(Date date) {
    return inUtc(date, "%Y-%m-%dT%H:%M:%SZ");
}

std::string dateDescription(Date date) {
    return inUtc(date, "%Y-%m-%d %H:%M:%S +0000");
}

} // namespace tovik
