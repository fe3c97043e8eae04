// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/SystemLog.h"
#include "Platform/UserDefaults.h"
#include "Speech/Text/FinalTextChain.h"

#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
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

/// Answers requests for single text rules, one JSON object each. No rule is made here: every answer comes
/// from the class that the program itself uses. One thread.
class RequestAnswerer {
public:
    /// The log outlives it.
    explicit RequestAnswerer(SystemLog& log);

    /// A line of JSON without a line feed; {"error": …} for whatever is no request.
    [[nodiscard]] std::string answer(std::string_view line);

private:
    using Operation = PropertyValue (RequestAnswerer::*)(const PropertyValue& request);

    static Operation operationFor(const std::string& name);
    void useSettingsOf(const PropertyValue& request);

    PropertyValue process(const PropertyValue& request);
    PropertyValue fillers(const PropertyValue& request);
    PropertyValue format(const PropertyValue& request);
    PropertyValue number(const PropertyValue& request);
    PropertyValue day(const PropertyValue& request);
    PropertyValue year(const PropertyValue& request);
    PropertyValue corrections(const PropertyValue& request);
    PropertyValue parseDisplay(const PropertyValue& request);
    PropertyValue fillerList(const PropertyValue& request);
    PropertyValue vocabulary(const PropertyValue& request);
    PropertyValue menuTitle(const PropertyValue& request);
    PropertyValue elapsed(const PropertyValue& request);
    PropertyValue level(const PropertyValue& request);
    PropertyValue bar(const PropertyValue& request);

    SystemLog& log_;
    RequestSettings settings_;
    FinalTextChain chain_;
};

} // namespace tovik
