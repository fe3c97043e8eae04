// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <unicode/umachine.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

// What the program needs of Unicode. Text rules work on UTF-16, as regular expressions do; the rest of the
// program speaks UTF-8. Any thread.

/// No place in a text.
inline constexpr auto kNone = std::u16string_view::npos;

/// What is not well-formed turns into U+FFFD on the way.
[[nodiscard]] std::u16string toUtf16(std::string_view utf8);
[[nodiscard]] std::string toUtf8(std::u16string_view utf16);

/// Whole Unicode mappings, the same in every language.
[[nodiscard]] std::u16string lowerCased(std::u16string_view text);
[[nodiscard]] std::u16string upperCased(std::u16string_view text);
/// Full case folding, the form in which case-insensitive matching compares. It maps each character on its
/// own.
[[nodiscard]] std::u16string caseFolded(std::u16string_view text);

/// Unicode white space, line ends among it: what "\s" matches and what trimming takes away.
[[nodiscard]] bool isWhiteSpace(UChar32 character);

[[nodiscard]] std::u16string_view trimmed(std::u16string_view text);
[[nodiscard]] std::string_view trimmed(std::string_view utf8);

/// The pieces between separators; empty ones are dropped.
[[nodiscard]] std::vector<std::u16string_view> pieces(std::u16string_view text, char16_t separator);

/// The text with every run of one unit made a single one.
[[nodiscard]] std::u16string withSingle(char16_t unit, std::u16string_view text);

/// The character at a position below the text's size, and how many units it has.
struct DecodedCharacter {
    UChar32 value;
    std::size_t length;
};
[[nodiscard]] DecodedCharacter characterAt(std::u16string_view text, std::size_t position);

/// A letter, mark, digit, or connector to "\b".
[[nodiscard]] bool isWordCharacter(UChar32 character);
/// Characters that "\b" looks through: combining ones and format controls.
[[nodiscard]] bool isIgnoredAtBoundaries(UChar32 character);
/// Whether "\b" matches at this position. Positions are never inside a surrogate pair.
[[nodiscard]] bool isWordBoundary(std::u16string_view text, std::size_t position);

/// Characters as people see them: "e" with a combining accent is one, and so is a flag.
[[nodiscard]] std::size_t characterCount(std::u16string_view text);
/// The whole text when it has no more.
[[nodiscard]] std::string firstCharacters(std::string_view text, std::size_t count);

} // namespace tovik
