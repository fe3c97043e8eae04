// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"

#include <thread>

namespace tovik {

/// The machine's own clock. Any thread.
class SystemClock : public Clock {
public:
    [[nodiscard]] Date now() const override { return std::chrono::system_clock::now(); }
    void pause(Seconds duration) override { std::this_thread::sleep_for(duration); }
};

} // namespace tovik
