// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>

namespace tovik::test {

/// Runs the Qt event loop until the condition holds. False when it does not within the time.
bool runUntil(const std::function<bool()>& condition,
              std::chrono::milliseconds patience = std::chrono::seconds(15));

/// Handles all that the event loop has to do at this moment.
void runPendingEvents();

} // namespace tovik::test
