// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <utility>

namespace tovik {

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
