// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <unicode/umachine.h>
#include <unicode/utf16.h>

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

[[nodiscard]] bool isWordCharacterBeyondAscii(UChar32 character);
[[nodiscard]] bool isIgnoredBeyondAscii(UChar32 character);

/// A letter, mark, digit, or connector to "\b".
[[nodiscard]] inline bool isWordCharacter(UChar32 character) {
    if (character < 0x80) {
        return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
               (character >= '0' && character <= '9') || character == '_';
    }
    return isWordCharacterBeyondAscii(character);
}

/// Characters that "\b" looks through: combining ones and format controls.
[[nodiscard]] inline bool isIgnoredAtBoundaries(UChar32 character) {
    return character >= 0x80 && isIgnoredBeyondAscii(character);
}

/// Whether "\b" matches at this position. Positions are never inside a surrogate pair.
[[nodiscard]] bool isWordBoundary(std::u16string_view text, std::size_t position);

/// Whether a word character is the last before the position that "\b" does not look through.
[[nodiscard]] bool isWordBefore(std::u16string_view text, std::size_t position);

/// The character at a position and how many units it has.
struct DecodedCharacter {
    UChar32 value;
    std::size_t length;
};
/// The position is below the text's size.
[[nodiscard]] inline DecodedCharacter characterAt(std::u16string_view text, std::size_t position) {
    auto next = position;
    UChar32 value = 0;
    U16_NEXT(text.data(), next, text.size(), value);
    return {value, next - position};
}

/// Calls the visitor with each position before a character at which "\b" matches, in order.
template <typename Visitor>
void forEachWordBoundary(std::u16string_view text, Visitor visit) {
    bool afterWord = false;
    for (std::size_t position = 0; position < text.size();) {
        const auto [character, length] = characterAt(text, position);
        if (!isIgnoredAtBoundaries(character)) {
            const bool isWord = isWordCharacter(character);
            if (isWord != afterWord) {
                visit(position);
            }
            afterWord = isWord;
        }
        position += length;
    }
}

} // namespace tovik
