// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tovik {

// Characters as people see them: "e" with a combining accent is one, and so is a flag.

[[nodiscard]] std::size_t characterCount(std::string_view text);
[[nodiscard]] std::size_t characterCount(std::u16string_view text);

/// The whole text when it has no more.
[[nodiscard]] std::string firstCharacters(std::string_view text, std::size_t count);

} // namespace tovik
