// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Pasteboard.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tovik::test {

/// A clipboard that remembers all it was given.
class FakePasteboard : public Pasteboard {
public:
    void replaceContents(std::string_view text) override { texts_.emplace_back(text); }

    /// What a paste would insert now; nothing as long as nothing was put there.
    [[nodiscard]] std::optional<std::string> contents() const {
        return texts_.empty() ? std::nullopt : std::optional(texts_.back());
    }
    /// Everything put there so far, in order.
    [[nodiscard]] const std::vector<std::string>& texts() const { return texts_; }

private:
    std::vector<std::string> texts_;
};

} // namespace tovik::test
