// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <unicode/umachine.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// Unicode white space, line ends among it: what "\s" matches and what trimming takes away.
[[nodiscard]] bool isWhiteSpace(UChar32 character);

[[nodiscard]] std::u16string_view trimmed(std::u16string_view text);
[[nodiscard]] std::string_view trimmed(std::string_view utf8);

/// The pieces between separators; empty ones are dropped.
[[nodiscard]] std::vector<std::u16string_view> pieces(std::u16string_view text, char16_t separator);

/// A letter, mark, digit, or connector to "\b".
[[nodiscard]] bool isWordCharacter(UChar32 character);

/// Characters that "\b" looks through: combining ones and format controls.
[[nodiscard]] bool isIgnoredAtBoundaries(UChar32 character);

/// Whether "\b" matches at this position, which must not be inside a surrogate pair.
[[nodiscard]] bool isWordBoundary(std::u16string_view text, std::size_t position);

/// The character at a position and how many units it has.
struct DecodedCharacter {
    UChar32 value;
    std::size_t length;
};
/// The position is below the text's size.
[[nodiscard]] DecodedCharacter characterAt(std::u16string_view text, std::size_t position);

} // namespace tovik
