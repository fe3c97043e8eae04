// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/CharacterClasses.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <cstdint>

namespace tovik {

namespace {

constexpr UChar32 kAsciiEnd = 0x80;
constexpr UChar32 kZeroWidthNonJoiner = 0x200C;
constexpr UChar32 kZeroWidthJoiner = 0x200D;

} // namespace

bool isWhiteSpace(UChar32 character) {
    if (character < kAsciiEnd) {
        return character == ' ' || (character >= '\t' && character <= '\r');
    }
    return u_isUWhiteSpace(character) != 0;
}

std::u16string_view trimmed(std::u16string_view text) {
    // No white space lies outside the basic plane, so units will do.
    while (!text.empty() && isWhiteSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isWhiteSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

std::string_view trimmed(std::string_view utf8) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(utf8.data());
    auto begin = std::int32_t{0};
    auto end = static_cast<std::int32_t>(utf8.size());
    for (auto next = begin; begin < end; begin = next) {
        UChar32 character = 0;
        U8_NEXT(bytes, next, end, character);
        if (character < 0 || !isWhiteSpace(character)) {
            break;
        }
    }
    for (auto previous = end; end > begin; end = previous) {
        UChar32 character = 0;
        U8_PREV(bytes, begin, previous, character);
        if (character < 0 || !isWhiteSpace(character)) {
            break;
        }
    }
    return utf8.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin));
}

std::vector<std::u16string_view> pieces(std::u16string_view text, char16_t separator) {
    std::vector<std::u16string_view> found;
    std::size_t begin = 0;
    while (begin <= text.size()) {
        const auto end = std::min(text.find(separator, begin), text.size());
        if (end > begin) {
            found.push_back(text.substr(begin, end - begin));
        }
        begin = end + 1;
    }
    return found;
}

bool isWordCharacterBeyondAscii(UChar32 character) {
    constexpr auto kCategories = U_GC_M_MASK | U_GC_ND_MASK | U_GC_PC_MASK;
    return u_hasBinaryProperty(character, UCHAR_ALPHABETIC) ||
           (U_GET_GC_MASK(character) & kCategories) != 0 || character == kZeroWidthNonJoiner ||
           character == kZeroWidthJoiner;
}

bool isIgnoredBeyondAscii(UChar32 character) {
    return u_hasBinaryProperty(character, UCHAR_GRAPHEME_EXTEND) || u_charType(character) == U_FORMAT_CHAR;
}

bool isWordBoundary(std::u16string_view text, std::size_t position) {
    bool beforeWord = false;
    if (position < text.size()) {
        const auto next = characterAt(text, position).value;
        if (isIgnoredAtBoundaries(next)) {
            return false;
        }
        beforeWord = isWordCharacter(next);
    }
    return beforeWord != isWordBefore(text, position);
}

bool isWordBefore(std::u16string_view text, std::size_t position) {
    while (position > 0) {
        UChar32 previous = 0;
        U16_PREV(text.data(), 0, position, previous);
        if (!isIgnoredAtBoundaries(previous)) {
            return isWordCharacter(previous);
        }
    }
    return false;
}

} // namespace tovik
