// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Clock.h"
#include "Platform/Subscription.h"

#include <functional>

namespace tovik {

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
