// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/UserDefaults.h"

#include <functional>
#include <utility>

namespace tovik::test {

/// Tells of a change when the test says so.
class FakeUserDefaultsChanges : public UserDefaultsChanges {
public:
    [[nodiscard]] Subscription observe(std::function<void()> handler) override {
        return observers_.add(std::move(handler));
    }

    void announce() { observers_.tell(); }

    [[nodiscard]] bool isObserved() const { return !observers_.isEmpty(); }

private:
    Observers<> observers_;
};

} // namespace tovik::test
