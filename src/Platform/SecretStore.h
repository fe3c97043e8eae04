// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"

#include <functional>
#include <optional>
#include <string>

namespace tovik {

/// Where the desktop keeps this user's passwords and keys; who puts them there is the user. Answers may take
/// long, since the desktop may ask the user to unlock them first: nobody should wait for one without a limit
/// of his own.
///
/// Any thread. Every completion is called exactly once, on the main queue, unless the store is gone by then.
/// Secrets of other programs are out of reach. A failure's description never holds a secret.
class SecretStore {
public:
    virtual ~SecretStore() = default;

    /// The secret kept under the name; nothing when there is none; an error when the desktop has no such
    /// store or the user refused to unlock it.
    virtual void lookUp(const std::string& name,
                        std::function<void(const Result<std::optional<std::string>>&)> completion) = 0;
};

} // namespace tovik
