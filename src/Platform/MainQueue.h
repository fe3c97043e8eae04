// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Subscription.h"

#include <chrono>
#include <functional>

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

/// Runs work on the main thread, now or later, in the order in which it falls due.
class MainQueue {
public:
    virtual ~MainQueue() = default;

    /// From any thread. The work never runs before this call returns.
    virtual void async(std::function<void()> work) = 0;

    /// Main thread only. Runs the work once after the delay; it cannot be taken back.
    virtual void asyncAfter(Seconds delay, std::function<void()> work) = 0;

    /// Main thread only. As asyncAfter, but dropping the token before it falls due takes the work back.
    [[nodiscard]] virtual Subscription after(Seconds delay, std::function<void()> work) = 0;

    /// Main thread only. Runs the work again and again, first after one interval, until the token is dropped.
    [[nodiscard]] virtual Subscription every(Seconds interval, std::function<void()> work) = 0;
};

} // namespace tovik
