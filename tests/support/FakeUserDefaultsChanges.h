// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/UserDefaults.h"

#include <cstddef>
#include <map>
#include <memory>
#include <utility>

namespace tovik::test {

/// Tells of a change when the test says so.
class FakeUserDefaultsChanges : public UserDefaultsChanges {
public:
    [[nodiscard]] Subscription observe(std::function<void()> handler) override {
        const int number = ++last_;
        handlers_->emplace(number, std::move(handler));
        return Subscription([handlers = std::weak_ptr(handlers_), number] {
            if (const auto remaining = handlers.lock()) {
                remaining->erase(number);
            }
        });
    }

    void announce() {
        const auto handlers = *handlers_;
        for (const auto& [number, handler] : handlers) {
            if (handlers_->contains(number)) {
                handler();
            }
        }
    }

    [[nodiscard]] std::size_t observers() const { return handlers_->size(); }

private:
    std::shared_ptr<std::map<int, std::function<void()>>> handlers_ =
        std::make_shared<std::map<int, std::function<void()>>>();
    int last_ = 0;
};

} // namespace tovik::test
