// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/UserDefaults.h"

#include <memory>
#include <string>
#include <vector>

namespace tovik::test {

/// User defaults that live as long as the test.
class MemoryUserDefaults : public UserDefaults {
public:
    MemoryUserDefaults();
    ~MemoryUserDefaults() override;

    [[nodiscard]] std::optional<PropertyValue> value(std::string_view key) const override;
    void set(std::string_view key, PropertyValue value) override;
    [[nodiscard]] bool isSaved(std::string_view key) const override;
    void remove(std::string_view key) override;

    /// From now on changes hold, but are not saved; or are again, with those of before.
    void setSaving(bool works);

    /// Another process has changed a key, and takes the place of what was not saved.
    void setByOthers(std::string_view key, PropertyValue value);

    /// The keys of all set and remove calls so far, in order.
    [[nodiscard]] std::vector<std::string> writes() const;

private:
    struct State;
    const std::unique_ptr<State> state_;
};

} // namespace tovik::test
