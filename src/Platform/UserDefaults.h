// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Subscription.h"

#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace tovik {

/// A stored setting: a boolean, string, number, list or map with string keys.
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
    virtual void keepAside(std::string_view key) {
        const auto unusable = value(key);
        if (!unusable) {
            return;
        }
        const auto asideKey = "platform.keptAside." + std::string(key);
        auto kept = value(asideKey).value_or(PropertyValue::array());
        if (!kept.is_array()) {
            kept = PropertyValue::array({kept});
        }
        kept.push_back(*unusable);
        set(asideKey, std::move(kept));
    }

    /// The typed reads give nothing when the key is absent or its value is of another type.
    [[nodiscard]] std::optional<bool> boolean(std::string_view key) const {
        return typed<bool>(key, &PropertyValue::is_boolean);
    }
    [[nodiscard]] std::optional<double> number(std::string_view key) const {
        return typed<double>(key, &PropertyValue::is_number);
    }
    [[nodiscard]] std::optional<std::string> string(std::string_view key) const {
        return typed<std::string>(key, &PropertyValue::is_string);
    }

private:
    template <typename T>
    std::optional<T> typed(std::string_view key, bool (PropertyValue::*isOfType)() const noexcept) const {
        const auto stored = value(key);
        if (!stored || !((*stored).*isOfType)()) {
            return std::nullopt;
        }
        return stored->get<T>();
    }
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

} // namespace tovik
