// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace tovik {

/// Whether a process of this machine is there and has not ended; one that only waits to be reaped has.
[[nodiscard]] bool isProcessRunning(std::int64_t process);

} // namespace tovik
