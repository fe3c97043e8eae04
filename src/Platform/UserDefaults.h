// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"
#include "Platform/Subscription.h"

#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace tovik {

/// A stored setting: a boolean, string, number, list or map with string keys. Who looks into one or makes one
/// includes nlohmann/json.hpp, which is too large for everybody.
using PropertyValue = nlohmann::json;

/// The user's settings, by key. Reading is allowed on any thread and always gives the newest stored state,
/// also when another process wrote it. Writing is for the main thread and is complete when the call returns;
/// a write that fails is reported by the implementation itself, and what was stored before stays.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    /// The value as it is stored, whatever its type; nothing when the key is absent.
    [[nodiscard]] virtual std::optional<PropertyValue> value(std::string_view key) const = 0;

    virtual void set(std::string_view key, PropertyValue value) = 0;

    /// Removing an absent key is harmless.
    virtual void remove(std::string_view key) = 0;

    /// Whether the key's last change has been written: false after a write that failed, until a later one
    /// works. Such a change is gone when another process changes the same key first.
    [[nodiscard]] virtual bool isSaved(std::string_view /*key*/) const { return true; }

    /// Keeps a copy of a stored value that nothing could be made of and that is about to be replaced, for a
    /// person to find; harmless when the key is absent. Writes, so it is for the main thread.
    virtual void keepAside(std::string_view key);

    /// The typed reads give nothing when the key is absent or its value is of another type.
    [[nodiscard]] std::optional<bool> boolean(std::string_view key) const;
    [[nodiscard]] std::optional<double> number(std::string_view key) const;
    [[nodiscard]] std::optional<std::string> string(std::string_view key) const;
};

/// Tells that the stored settings may have changed, also when another process has changed them. For what is
/// shown on the screen: who only uses a setting reads it when it is needed. Main thread.
class UserDefaultsChanges {
public:
    virtual ~UserDefaultsChanges() = default;

    /// Calls the handler from the event loop, after a change and perhaps without one, until the token is
    /// dropped. What UserDefaults says then is the new state.
    [[nodiscard]] virtual Subscription observe(std::function<void()> handler) = 0;
};

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
