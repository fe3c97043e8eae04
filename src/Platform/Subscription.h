// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <utility>

namespace tovik {

/// Stands for something that goes on until it is ended: an observer, a timer, a watch.
/// Dropping it ends it; ending it twice is harmless. Belongs to the thread that received it.
class [[nodiscard]] Subscription {
public:
    Subscription() = default;
    explicit Subscription(std::function<void()> end) : end_(std::move(end)) {}
    Subscription(Subscription&& other) noexcept : end_(std::exchange(other.end_, nullptr)) {}
    Subscription& operator=(Subscription&& other) noexcept {
        if (this != &other) {
            end();
            end_ = std::exchange(other.end_, nullptr);
        }
        return *this;
    }
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;
    ~Subscription() { end(); }

    void end() {
        if (auto end = std::exchange(end_, nullptr)) {
            end();
        }
    }

    /// True until it was ended or moved away. A one-shot timer that has fired still counts.
    explicit operator bool() const { return end_ != nullptr; }

private:
    std::function<void()> end_;
};

} // namespace tovik
