// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/UserDefaults.h"

#include <map>
#include <string>
#include <utility>

namespace tovik {

/// The settings that one request brings along; nobody else's are touched. One thread.
class RequestSettings : public UserDefaults {
public:
    /// A map of keys to values.
    void replaceAll(const PropertyValue& settings) {
        values_ = settings.get<std::map<std::string, PropertyValue, std::less<>>>();
    }

    [[nodiscard]] std::optional<PropertyValue> value(std::string_view key) const override {
        const auto found = values_.find(key);
        return found == values_.end() ? std::nullopt : std::optional(found->second);
    }
    void set(std::string_view key, PropertyValue value) override {
        values_.insert_or_assign(std::string(key), std::move(value));
    }
    void remove(std::string_view key) override {
        if (const auto found = values_.find(key); found != values_.end()) {
            values_.erase(found);
        }
    }

private:
    std::map<std::string, PropertyValue, std::less<>> values_;
};

} // namespace tovik
