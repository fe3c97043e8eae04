// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace tovik::test {

/// Clock and main queue whose time stands still until a test moves it. Work runs inside advance() and
/// runPending(), at the very time it fell due. Only async() is for any thread.
class ManualTime : public Clock, public MainQueue {
public:
    /// 2025-03-01 14:05:09 UTC.
    static constexpr std::int64_t startSecondsSince1970 = 1740837909;

    ManualTime();
    ~ManualTime() override;

    [[nodiscard]] Date now() const override;
    /// Moves the time on without running anything, as a blocked main thread would, and is remembered.
    void pause(Seconds duration) override;

    void async(std::function<void()> work) override;
    void asyncAfter(Seconds delay, std::function<void()> work) override;
    [[nodiscard]] Subscription after(Seconds delay, std::function<void()> work) override;
    [[nodiscard]] Subscription every(Seconds interval, std::function<void()> work) override;

    /// Runs what is due now, and what that queues for now.
    void runPending();
    /// Moves the time on, running on the way what falls due.
    void advance(Seconds duration);

    [[nodiscard]] const std::vector<Seconds>& pauses() const { return pauses_; }
    /// Timers and delayed work that have not run and were not taken back.
    [[nodiscard]] std::size_t pendingCount() const;

private:
    struct Entry;
    using Order = std::pair<Date, std::uint64_t>;

    Subscription schedule(Seconds delay, std::function<void()> work, bool repeats, bool cancellable);
    bool runNextUntil(Date limit);

    Date now_;
    std::uint64_t nextId_ = 0;
    mutable std::mutex mutex_;
    std::map<Order, std::shared_ptr<Entry>> entries_;
    std::vector<Seconds> pauses_;
};

} // namespace tovik::test
