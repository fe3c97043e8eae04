// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/MemoryUserDefaults.h"

#include <functional>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <utility>

namespace tovik::test {

struct MemoryUserDefaults::State {
    std::mutex mutex;
    std::map<std::string, PropertyValue, std::less<>> values;
    std::vector<std::string> writes;
    bool savesChanges = true;
    std::map<std::string, bool, std::less<>> saves;
};

MemoryUserDefaults::MemoryUserDefaults() : state_(std::make_unique<State>()) {}

MemoryUserDefaults::~MemoryUserDefaults() = default;

std::optional<PropertyValue> MemoryUserDefaults::value(std::string_view key) const {
    const std::lock_guard lock(state_->mutex);
    const auto found = state_->values.find(key);
    return found == state_->values.end() ? std::nullopt : std::optional(found->second);
}

void MemoryUserDefaults::set(std::string_view key, PropertyValue value) {
    const std::lock_guard lock(state_->mutex);
    state_->writes.emplace_back(key);
    state_->values.insert_or_assign(std::string(key), std::move(value));
    state_->saves[std::string(key)] = state_->savesChanges;
}

bool MemoryUserDefaults::isSaved(std::string_view key) const {
    const std::lock_guard lock(state_->mutex);
    const auto found = state_->saves.find(key);
    return found == state_->saves.end() || found->second;
}

void MemoryUserDefaults::remove(std::string_view key) {
    const std::lock_guard lock(state_->mutex);
    state_->writes.emplace_back(key);
    if (const auto found = state_->values.find(key); found != state_->values.end()) {
        state_->values.erase(found);
    }
}

void MemoryUserDefaults::setSaving(bool works) {
    const std::lock_guard lock(state_->mutex);
    state_->savesChanges = works;
    if (works) {
        state_->saves.clear();
    }
}

void MemoryUserDefaults::setByOthers(std::string_view key, PropertyValue value) {
    const std::lock_guard lock(state_->mutex);
    state_->values.insert_or_assign(std::string(key), std::move(value));
    state_->saves.insert_or_assign(std::string(key), true);
}

std::vector<std::string> MemoryUserDefaults::writes() const {
    const std::lock_guard lock(state_->mutex);
    return state_->writes;
}

} // namespace tovik::test
