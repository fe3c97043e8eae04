// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/QtMainQueue.h"

#include <QMetaObject>
#include <QObject>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <utility>

namespace tovik {

namespace {

using SteadyClock = std::chrono::steady_clock;
using SteadyTime = SteadyClock::time_point;

constexpr Seconds kShortestInterval(0.001);
/// Far beyond any delay in use, and far from what the event loop's timers cannot hold.
constexpr Seconds kLongestDelay(7 * 24 * 3600.0);

SteadyClock::duration steady(Seconds delay) {
    return std::chrono::duration_cast<SteadyClock::duration>(std::clamp(delay, Seconds(0), kLongestDelay));
}

} // namespace

/// Everything that waits, in the one order in which it falls due: events and timers of the event loop have
/// no order among each other.
class QtMainQueue::Schedule : public std::enable_shared_from_this<Schedule> {
public:
    struct Entry {
        std::function<void()> work;
        std::optional<SteadyClock::duration> interval;
        bool isCancelled = false;
    };

    Schedule() {
        timer_.setSingleShot(true);
        timer_.setTimerType(Qt::PreciseTimer);
        QObject::connect(&timer_, &QTimer::timeout, &wakeUps_, [this] { shared_from_this()->runDue(); });
    }

    /// Any thread.
    void addNow(std::function<void()> work) {
        auto entry = std::make_shared<Entry>();
        entry->work = std::move(work);
        const std::lock_guard lock(mutex_);
        insert(SteadyClock::now(), std::move(entry));
        askForWakeUp();
    }

    std::shared_ptr<Entry> add(SteadyClock::duration delay, std::function<void()> work,
                               std::optional<SteadyClock::duration> interval = std::nullopt) {
        auto entry = std::make_shared<Entry>();
        entry->work = std::move(work);
        entry->interval = interval;
        {
            const std::lock_guard lock(mutex_);
            insert(SteadyClock::now() + delay, entry);
        }
        armTimer();
        return entry;
    }

    void close() {
        const std::lock_guard lock(mutex_);
        isClosed_ = true;
        entries_.clear();
    }

private:
    using Order = std::pair<SteadyTime, std::uint64_t>;

    void insert(SteadyTime due, std::shared_ptr<Entry> entry) {
        entries_.emplace(Order{due, nextId_++}, std::move(entry));
    }

    void askForWakeUp() {
        if (!std::exchange(isWakeUpPosted_, true)) {
            QMetaObject::invokeMethod(
                &wakeUps_, [this] { shared_from_this()->wakeUp(); }, Qt::QueuedConnection);
        }
    }

    void wakeUp() {
        {
            const std::lock_guard lock(mutex_);
            isWakeUpPosted_ = false;
        }
        runDue();
    }

    /// Runs what is due by now. What the work itself queues waits for the next round, so that the event loop
    /// gets its turn.
    void runDue() {
        std::uint64_t newest = 0;
        {
            const std::lock_guard lock(mutex_);
            newest = nextId_;
        }
        const auto now = SteadyClock::now();
        while (const auto entry = takeNext(now, newest)) {
            // The work may run an event loop of its own, in which time goes on.
            armTimer();
            entry->work();
        }
        armTimer();
    }

    std::shared_ptr<Entry> takeNext(SteadyTime now, std::uint64_t newest) {
        const std::lock_guard lock(mutex_);
        while (!isClosed_ && !entries_.empty()) {
            const auto first = entries_.begin();
            const auto [due, id] = first->first;
            if (due > now || id >= newest) {
                return nullptr;
            }
            auto entry = std::move(first->second);
            entries_.erase(first);
            if (entry->isCancelled) {
                continue;
            }
            if (entry->interval) {
                const auto missed = (now - due) / *entry->interval;
                insert(due + *entry->interval * (missed + 1), entry);
            }
            return entry;
        }
        return nullptr;
    }

    void armTimer() {
        const std::lock_guard lock(mutex_);
        std::erase_if(entries_, [](const auto& item) { return item.second->isCancelled; });
        if (isClosed_ || entries_.empty()) {
            timer_.stop();
            return;
        }
        const auto wait = entries_.begin()->first.first - SteadyClock::now();
        timer_.start(
            std::max(std::chrono::ceil<std::chrono::milliseconds>(wait), std::chrono::milliseconds(0)));
    }

    std::mutex mutex_;
    std::map<Order, std::shared_ptr<Entry>> entries_;
    std::uint64_t nextId_ = 0;
    bool isWakeUpPosted_ = false;
    bool isClosed_ = false;
    QObject wakeUps_;
    QTimer timer_;
};

namespace {

template <typename Entry>
Subscription cancelling(const std::shared_ptr<Entry>& entry) {
    return Subscription([weak = std::weak_ptr(entry)] {
        if (const auto waiting = weak.lock()) {
            waiting->isCancelled = true;
        }
    });
}

} // namespace

QtMainQueue::QtMainQueue() : schedule_(std::make_shared<Schedule>()) {}

QtMainQueue::~QtMainQueue() {
    schedule_->close();
}

void QtMainQueue::async(std::function<void()> work) {
    schedule_->addNow(std::move(work));
}

void QtMainQueue::asyncAfter(Seconds delay, std::function<void()> work) {
    (void)schedule_->add(steady(delay), std::move(work));
}

Subscription QtMainQueue::after(Seconds delay, std::function<void()> work) {
    return cancelling(schedule_->add(steady(delay), std::move(work)));
}

Subscription QtMainQueue::every(Seconds interval, std::function<void()> work) {
    const auto step = steady(std::max(interval, kShortestInterval));
    return cancelling(schedule_->add(step, std::move(work), step));
}

} // namespace tovik
