// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Subscription.h"

#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace tovik {

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

} // namespace tovik
