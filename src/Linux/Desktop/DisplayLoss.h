// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace tovik {

/// Qt ends the process as soon as the X server has gone, without a way back to the event loop. Calls the
/// handler just before, on the main thread: it may take a moment, and must not touch windows. One at a time.
class DisplayLoss {
public:
    explicit DisplayLoss(std::function<void()> handler);
    ~DisplayLoss();
    DisplayLoss(const DisplayLoss&) = delete;
    DisplayLoss& operator=(const DisplayLoss&) = delete;
};

} // namespace tovik
