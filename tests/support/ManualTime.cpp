// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/ManualTime.h"

#include <algorithm>

namespace tovik::test {

struct ManualTime::Entry {
    std::function<void()> work;
    Seconds interval{};
    bool repeats = false;
    bool cancelled = false;
};

ManualTime::ManualTime() : now_(std::chrono::seconds(startSecondsSince1970)) {}

ManualTime::~ManualTime() = default;

Date ManualTime::now() const {
    const std::lock_guard lock(mutex_);
    return now_;
}

void ManualTime::pause(Seconds duration) {
    const std::lock_guard lock(mutex_);
    now_ += std::chrono::duration_cast<Date::duration>(duration);
    pauses_.push_back(duration);
}

void ManualTime::async(std::function<void()> work) {
    schedule(Seconds(0), std::move(work), false, false).end();
}

void ManualTime::asyncAfter(Seconds delay, std::function<void()> work) {
    schedule(delay, std::move(work), false, false).end();
}

Subscription ManualTime::after(Seconds delay, std::function<void()> work) {
    return schedule(delay, std::move(work), false, true);
}

Subscription ManualTime::every(Seconds interval, std::function<void()> work) {
    return schedule(interval, std::move(work), true, true);
}

Subscription ManualTime::schedule(Seconds delay, std::function<void()> work, bool repeats, bool cancellable) {
    auto entry = std::make_shared<Entry>();
    entry->work = std::move(work);
    entry->interval = delay;
    entry->repeats = repeats;
    const std::lock_guard lock(mutex_);
    entries_.emplace(Order{now_ + std::chrono::duration_cast<Date::duration>(delay), nextId_++}, entry);
    if (!cancellable) {
        return {};
    }
    return Subscription([weak = std::weak_ptr(entry)] {
        if (const auto alive = weak.lock()) {
            alive->cancelled = true;
        }
    });
}

bool ManualTime::runNextUntil(Date limit) {
    std::shared_ptr<Entry> entry;
    {
        const std::lock_guard lock(mutex_);
        std::erase_if(entries_, [](const auto& item) { return item.second->cancelled; });
        if (entries_.empty() || entries_.begin()->first.first > limit) {
            return false;
        }
        const auto due = entries_.begin()->first.first;
        entry = entries_.begin()->second;
        entries_.erase(entries_.begin());
        now_ = std::max(now_, due);
        if (entry->repeats) {
            entries_.emplace(
                Order{due + std::chrono::duration_cast<Date::duration>(entry->interval), nextId_++}, entry);
        }
    }
    entry->work();
    return true;
}

void ManualTime::runPending() {
    while (runNextUntil(now())) {
    }
}

void ManualTime::advance(Seconds duration) {
    const auto target = now() + std::chrono::duration_cast<Date::duration>(duration);
    while (runNextUntil(target)) {
    }
    const std::lock_guard lock(mutex_);
    now_ = std::max(now_, target);
}

std::size_t ManualTime::pendingCount() const {
    const std::lock_guard lock(mutex_);
    return static_cast<std::size_t>(std::count_if(entries_.begin(), entries_.end(),
                                                  [](const auto& item) { return !item.second->cancelled; }));
}

} // namespace tovik::test
