// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace tovik {

// Text rules work on UTF-16, as the regular-expression service does; the rest of the program speaks UTF-8.
// What is not well-formed turns into U+FFFD on the way.

[[nodiscard]] std::u16string toUtf16(std::string_view utf8);
[[nodiscard]] std::string toUtf8(std::u16string_view utf16);

/// Whole Unicode mappings, the same in every language.
[[nodiscard]] std::u16string lowerCased(std::u16string_view text);
[[nodiscard]] std::u16string upperCased(std::u16string_view text);

} // namespace tovik
