// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <time.h>

namespace tovik::test {

/// Milliseconds this thread has spent on a processor so far: unlike the time on the wall, they do not grow
/// with whatever else the machine does.
inline double processorMilliseconds() {
    timespec time{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

} // namespace tovik::test
