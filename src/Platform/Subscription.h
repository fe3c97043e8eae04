// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

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

/// Who wants to be told of something. A handler may begin and end any subscription, its own included, and
/// destroy the list; one that was begun meanwhile hears the next time. Tokens may outlive the list. One
/// thread.
template <typename... Arguments>
class Observers {
public:
    using Handler = std::function<void(const Arguments&...)>;

    Observers() = default;
    Observers(const Observers&) = delete;
    Observers& operator=(const Observers&) = delete;

    [[nodiscard]] Subscription add(Handler handler) {
        const int number = ++lastNumber_;
        handlers_->emplace(number, std::move(handler));
        return Subscription([handlers = std::weak_ptr(handlers_), number] {
            if (const auto remaining = handlers.lock()) {
                remaining->erase(number);
            }
        });
    }

    void tell(const Arguments&... arguments) const {
        std::vector<int> numbers;
        for (const auto& [number, handler] : *handlers_) {
            numbers.push_back(number);
        }
        const auto handlers = handlers_;
        for (const int number : numbers) {
            if (const auto found = handlers->find(number); found != handlers->end()) {
                const Handler handler = found->second;
                handler(arguments...);
            }
        }
    }

    [[nodiscard]] bool isEmpty() const { return handlers_->empty(); }

private:
    std::shared_ptr<std::map<int, Handler>> handlers_ = std::make_shared<std::map<int, Handler>>();
    int lastNumber_ = 0;
};

/// Lets a callback find out whether its owner still exists. The owner keeps a Lifetime as its last member
/// and hands out guarded callbacks; those do nothing once the owner is gone. For callbacks that run on the
/// thread on which the owner is destroyed.
class Lifetime {
public:
    Lifetime() = default;
    Lifetime(const Lifetime&) = delete;
    Lifetime& operator=(const Lifetime&) = delete;

    template <typename Callback>
    [[nodiscard]] auto guard(Callback callback) const {
        return [owner = std::weak_ptr<char>(alive_),
                callback = std::move(callback)](auto&&... arguments) mutable {
            if (!owner.expired()) {
                callback(std::forward<decltype(arguments)>(arguments)...);
            }
        };
    }

private:
    std::shared_ptr<char> alive_ = std::make_shared<char>();
};

} // namespace tovik
