// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/UserDefaults.h"

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace tovik {

/// A value together with its text as JSON, which is made once, when it is first needed. Any thread.
class JsonValue {
public:
    explicit JsonValue(PropertyValue value) : value_(std::move(value)) {}
    /// The text must be the value's.
    JsonValue(PropertyValue value, std::string text);

    /// For values that were not read from JSON: bytes that are no UTF-8 become replacement characters.
    [[nodiscard]] static std::shared_ptr<const JsonValue> checked(PropertyValue value);

    [[nodiscard]] const PropertyValue& value() const { return value_; }
    [[nodiscard]] const std::string& text() const;

private:
    PropertyValue value_;
    mutable std::once_flag isTextMade_;
    mutable std::string text_;
};

/// One JSON object. Copies share the values, so that copying a document with a long list in it, and writing
/// it after a change elsewhere, stays cheap.
class JsonDocument {
public:
    using Value = std::shared_ptr<const JsonValue>;

    /// Nothing when the text is not one JSON object, or is nested beyond reason.
    [[nodiscard]] static std::optional<JsonDocument> parse(std::string_view text);

    /// Null when the key is absent.
    [[nodiscard]] Value find(std::string_view key) const;
    /// Null removes the key.
    void put(std::string_view key, Value value);

    /// One line for each key, in the order of the keys.
    [[nodiscard]] std::string serialize() const;

private:
    std::map<std::string, Value, std::less<>> values_;
};

} // namespace tovik
