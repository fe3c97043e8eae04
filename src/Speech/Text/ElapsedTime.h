// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Clock.h"

#include <cstdint>
#include <string>

namespace tovik {

/// The whole seconds since a moment, never below 0.
[[nodiscard]] std::int64_t elapsedSeconds(Date startedAt, Date now);

/// Minutes and seconds, from an hour on also hours: "0:07", "12:34", "1:00:05". Below 0 counts as 0.
[[nodiscard]] std::string formattedElapsedTime(std::int64_t seconds);

} // namespace tovik
