// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

namespace tovik {

/// An absolute point in time, as people and files mean it.
using Date = std::chrono::system_clock::time_point;

/// Seconds with fractions; how delays and intervals are given throughout the program.
using Seconds = std::chrono::duration<double>;

/// Tells the time, and is the only way to wait.
class Clock {
public:
    virtual ~Clock() = default;

    [[nodiscard]] virtual Date now() const = 0;

    /// Blocks the calling thread.
    virtual void pause(Seconds duration) = 0;
};

} // namespace tovik
