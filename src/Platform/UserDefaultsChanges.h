// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Subscription.h"

#include <functional>

namespace tovik {

/// Tells that the stored settings may have changed, also when another process has changed them. For what is
/// shown on the screen: who only uses a setting reads it when it is needed. Main thread.
class UserDefaultsChanges {
public:
    virtual ~UserDefaultsChanges() = default;

    /// Calls the handler from the event loop, after a change and perhaps without one, until the token is
    /// dropped. What UserDefaults says then is the new state.
    [[nodiscard]] virtual Subscription observe(std::function<void()> handler) = 0;
};

} // namespace tovik
