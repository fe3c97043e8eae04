// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/UserDefaults.h"

#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

namespace tovik {

/// Settings of this process alone: the user's own are neither read nor written.
class OwnSettings : public UserDefaults {
public:
    using Values = std::map<std::string, PropertyValue, std::less<>>;

    explicit OwnSettings(Values values) : values_(std::move(values)) {}

    [[nodiscard]] std::optional<PropertyValue> value(std::string_view key) const override {
        const std::lock_guard lock(mutex_);
        const auto found = values_.find(key);
        return found == values_.end() ? std::nullopt : std::optional(found->second);
    }
    void set(std::string_view key, PropertyValue value) override {
        const std::lock_guard lock(mutex_);
        values_.insert_or_assign(std::string(key), std::move(value));
    }
    void remove(std::string_view key) override {
        const std::lock_guard lock(mutex_);
        if (const auto found = values_.find(key); found != values_.end()) {
            values_.erase(found);
        }
    }

private:
    mutable std::mutex mutex_;
    Values values_;
};

} // namespace tovik
