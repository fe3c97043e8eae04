// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/UserDefaults.h"

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace tovik::test {

/// User defaults that live as long as the test.
class MemoryUserDefaults : public UserDefaults {
public:
    [[nodiscard]] std::optional<PropertyValue> value(std::string_view key) const override {
        const std::lock_guard lock(mutex_);
        const auto found = values_.find(key);
        return found == values_.end() ? std::nullopt : std::optional(found->second);
    }

    void set(std::string_view key, PropertyValue value) override {
        const std::lock_guard lock(mutex_);
        writes_.emplace_back(key);
        values_.insert_or_assign(std::string(key), std::move(value));
        saves_[std::string(key)] = savesChanges_;
    }

    [[nodiscard]] bool isSaved(std::string_view key) const override {
        const std::lock_guard lock(mutex_);
        const auto found = saves_.find(key);
        return found == saves_.end() || found->second;
    }

    /// From now on changes hold, but are not saved; or are again, with those of before.
    void setSaving(bool works) {
        const std::lock_guard lock(mutex_);
        savesChanges_ = works;
        if (works) {
            saves_.clear();
        }
    }

    /// Another process has changed a key, and takes the place of what was not saved.
    void setByOthers(std::string_view key, PropertyValue value) {
        const std::lock_guard lock(mutex_);
        values_.insert_or_assign(std::string(key), std::move(value));
        saves_.insert_or_assign(std::string(key), true);
    }

    void remove(std::string_view key) override {
        const std::lock_guard lock(mutex_);
        writes_.emplace_back(key);
        if (const auto found = values_.find(key); found != values_.end()) {
            values_.erase(found);
        }
    }

    /// The keys of all set and remove calls so far, in order.
    [[nodiscard]] std::vector<std::string> writes() const {
        const std::lock_guard lock(mutex_);
        return writes_;
    }

private:
    mutable std::mutex mutex_;
    std::map<std::string, PropertyValue, std::less<>> values_;
    std::vector<std::string> writes_;
    bool savesChanges_ = true;
    std::map<std::string, bool, std::less<>> saves_;
};

} // namespace tovik::test
