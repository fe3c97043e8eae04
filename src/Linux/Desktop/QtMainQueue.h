// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"

#include <memory>
#include <thread>

namespace tovik {

/// The machine's own clock. Any thread.
class SystemClock : public Clock {
public:
    [[nodiscard]] Date now() const override { return std::chrono::system_clock::now(); }
    void pause(Seconds duration) override { std::this_thread::sleep_for(duration); }
};

/// Runs work in the Qt event loop of the thread that makes it, also inside nested event loops. Work that is
/// still waiting when the queue is destroyed never runs. Delays are kept to the millisecond, never cut short.
class QtMainQueue : public MainQueue {
public:
    /// On the main thread, after the QCoreApplication.
    QtMainQueue();
    ~QtMainQueue() override;

    void async(std::function<void()> work) override;
    void asyncAfter(Seconds delay, std::function<void()> work) override;
    [[nodiscard]] Subscription after(Seconds delay, std::function<void()> work) override;
    /// Firings missed while the thread was busy are made up for by one.
    [[nodiscard]] Subscription every(Seconds interval, std::function<void()> work) override;

private:
    class Schedule;

    std::shared_ptr<Schedule> schedule_;
};

} // namespace tovik
