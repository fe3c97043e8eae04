// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Platform/UserDefaults.h"

#include <nlohmann/json.hpp>
#include <utility>

namespace tovik {

namespace {

template <typename T>
std::optional<T> typed(const std::optional<PropertyValue>& stored,
                       bool (PropertyValue::*isOfType)() const noexcept) {
    return stored && ((*stored).*isOfType)() ? std::optional(stored->get<T>()) : std::nullopt;
}

} // namespace

void UserDefaults::keepAside(std::string_view key) {
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

std::optional<bool> UserDefaults::boolean(std::string_view key) const {
    return typed<bool>(value(key), &PropertyValue::is_boolean);
}

std::optional<double> UserDefaults::number(std::string_view key) const {
    return typed<double>(value(key), &PropertyValue::is_number);
}

std::optional<std::string> UserDefaults::string(std::string_view key) const {
    return typed<std::string>(value(key), &PropertyValue::is_string);
}

} // namespace tovik
