// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Storage/JsonDocument.h"

#include <cstddef>
#include <utility>

namespace tovik {

namespace {

using Json = nlohmann::json;

/// Deeper than any setting, and far from what would exhaust the stack when a value is copied or written.
constexpr int kDeepestNesting = 256;

bool isNestedTooDeep(std::string_view text) {
    int depth = 0;
    bool inString = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char byte = text[at];
        if (inString) {
            if (byte == '\\') {
                ++at;
            } else if (byte == '"') {
                inString = false;
            }
        } else if (byte == '"') {
            inString = true;
        } else if (byte == '[' || byte == '{') {
            if (++depth > kDeepestNesting) {
                return true;
            }
        } else if (byte == ']' || byte == '}') {
            --depth;
        }
    }
    return false;
}

std::string dump(const Json& value) {
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace

JsonValue::JsonValue(PropertyValue value, std::string text)
    : value_(std::move(value)),
      text_(std::move(text)) {
    std::call_once(isTextMade_, [] {});
}

std::shared_ptr<const JsonValue> JsonValue::checked(PropertyValue value) {
    std::string text;
    try {
        text = value.dump(-1, ' ', false, Json::error_handler_t::strict);
    } catch (const Json::type_error&) {
        text = dump(value);
        value = Json::parse(text);
    }
    return std::make_shared<const JsonValue>(std::move(value), std::move(text));
}

const std::string& JsonValue::text() const {
    std::call_once(isTextMade_, [this] { text_ = dump(value_); });
    return text_;
}

std::optional<JsonDocument> JsonDocument::parse(std::string_view text) {
    if (isNestedTooDeep(text)) {
        return std::nullopt;
    }
    auto parsed = Json::parse(text, nullptr, false);
    if (!parsed.is_object()) {
        return std::nullopt;
    }
    JsonDocument document;
    for (auto& [key, value] : parsed.get_ref<Json::object_t&>()) {
        document.values_.emplace(key, std::make_shared<const JsonValue>(std::move(value)));
    }
    return document;
}

JsonDocument::Value JsonDocument::find(std::string_view key) const {
    const auto found = values_.find(key);
    return found == values_.end() ? nullptr : found->second;
}

void JsonDocument::put(std::string_view key, Value value) {
    if (value) {
        values_.insert_or_assign(std::string(key), std::move(value));
    } else if (const auto found = values_.find(key); found != values_.end()) {
        values_.erase(found);
    }
}

std::string JsonDocument::serialize() const {
    std::string text = "{";
    const char* separator = "\n  ";
    for (const auto& [key, value] : values_) {
        text += separator;
        text += dump(Json(key));
        text += ": ";
        text += value->text();
        separator = ",\n  ";
    }
    text += "\n}\n";
    return text;
}

} // namespace tovik
