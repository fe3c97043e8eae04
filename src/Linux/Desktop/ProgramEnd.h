// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Posix.h"

#include <functional>
#include <memory>
#include <vector>

class QSocketNotifier;

namespace tovik {

/// Turns the first SIGTERM, SIGINT and SIGHUP into a call on the main thread, so that the program can end in
/// good order. A second SIGTERM or SIGINT ends it the hard way, should it hang; SIGHUP after another signal
/// says nothing new. Signals that the program was started to ignore stay ignored. One at a time; after the
/// QCoreApplication.
class TerminationSignals {
public:
    explicit TerminationSignals(std::function<void()> handler);
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;
    /// The signals end the program again.
    ~TerminationSignals();

private:
    UnixFd arrived_;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::vector<int> taken_;
};

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
