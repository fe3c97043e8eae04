// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Clock.h"

#include <string>

namespace tovik {

/// ISO 8601 internet date-time: UTC, whole seconds, as in 2025-03-01T14:05:09Z.
[[nodiscard]] std::string internetDateTime(Date date);

/// As in 2025-03-01 14:05:09 +0000.
[[nodiscard]] std::string dateDescription(Date date);

} // namespace tovik
