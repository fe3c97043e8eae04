// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Storage/SystemClock.h"

#include <thread>

namespace tovik {

Date SystemClock::now() const {
    return std::chrono::system_clock::now();
}

void SystemClock::pause(Seconds duration) {
    std::this_thread::sleep_for(duration);
}

} // namespace tovik
