// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/Unicode.h"

#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>
#include <memory>

namespace tovik {

namespace {

constexpr UChar32 kReplacementCharacter = 0xFFFD;
constexpr UChar32 kZeroWidthNonJoiner = 0x200C;
constexpr UChar32 kZeroWidthJoiner = 0x200D;

/// The callback gets where to write and how much fits there, and returns how much it wrote.
template <typename Map>
std::u16string caseMapped(std::u16string_view text, Map map) {
    // A mapping makes at most three units of one.
    std::u16string mapped(text.size() * 3, u'\0');
    UErrorCode status = U_ZERO_ERROR;
    const auto length = map(mapped.data(), static_cast<std::int32_t>(mapped.size()), text.data(),
                            static_cast<std::int32_t>(text.size()), &status);
    if (U_FAILURE(status)) {
        return std::u16string(text);
    }
    mapped.resize(static_cast<std::size_t>(length));
    return mapped;
}

// Making an iterator costs far more than using one, and one serves one thread.
icu::BreakIterator* characterIterator() {
    thread_local const auto iterator = [] {
        UErrorCode status = U_ZERO_ERROR;
        auto made = std::unique_ptr<icu::BreakIterator>(
            icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
        return U_SUCCESS(status) ? std::move(made) : nullptr;
    }();
    return iterator.get();
}

/// Where the character number `count` ends, or the text does; and how many characters lie before that.
struct Stretch {
    std::size_t end;
    std::size_t characters;
};

Stretch stretchOf(std::u16string_view text, std::size_t count) {
    auto* iterator = characterIterator();
    if (iterator == nullptr) {
        const auto end = std::min(count, text.size());
        return {end, end};
    }
    const icu::UnicodeString alias(false, text.data(), static_cast<std::int32_t>(text.size()));
    iterator->setText(alias);
    Stretch stretch{0, 0};
    while (stretch.characters < count) {
        const auto next = iterator->next();
        if (next == icu::BreakIterator::DONE) {
            break;
        }
        stretch.end = static_cast<std::size_t>(next);
        ++stretch.characters;
    }
    return stretch;
}

} // namespace

std::u16string toUtf16(std::string_view utf8) {
    std::u16string utf16(utf8.size(), u'\0');
    std::int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(utf16.data(), static_cast<std::int32_t>(utf16.size()), &length, utf8.data(),
                         static_cast<std::int32_t>(utf8.size()), kReplacementCharacter, nullptr, &status);
    utf16.resize(static_cast<std::size_t>(length));
    return utf16;
}

std::string toUtf8(std::u16string_view utf16) {
    std::string utf8(utf16.size() * 3, '\0');
    std::int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8WithSub(utf8.data(), static_cast<std::int32_t>(utf8.size()), &length, utf16.data(),
                       static_cast<std::int32_t>(utf16.size()), kReplacementCharacter, nullptr, &status);
    utf8.resize(static_cast<std::size_t>(length));
    return utf8;
}

std::u16string lowerCased(std::u16string_view text) {
    return caseMapped(text, [](auto* to, auto room, const auto* from, auto length, auto* status) {
        return u_strToLower(to, room, from, length, "", status);
    });
}

std::u16string upperCased(std::u16string_view text) {
    return caseMapped(text, [](auto* to, auto room, const auto* from, auto length, auto* status) {
        return u_strToUpper(to, room, from, length, "", status);
    });
}

std::u16string caseFolded(std::u16string_view text) {
    return caseMapped(text, [](auto* to, auto room, const auto* from, auto length, auto* status) {
        return u_strFoldCase(to, room, from, length, U_FOLD_CASE_DEFAULT, status);
    });
}

bool isWhiteSpace(UChar32 character) {
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

std::u16string withSingle(char16_t unit, std::u16string_view text) {
    std::u16string result;
    for (const auto current : text) {
        if (current != unit || result.empty() || result.back() != unit) {
            result += current;
        }
    }
    return result;
}

DecodedCharacter characterAt(std::u16string_view text, std::size_t position) {
    auto next = position;
    UChar32 value = 0;
    U16_NEXT(text.data(), next, text.size(), value);
    return {value, next - position};
}

bool isWordCharacter(UChar32 character) {
    constexpr auto kCategories = U_GC_M_MASK | U_GC_ND_MASK | U_GC_PC_MASK;
    return u_hasBinaryProperty(character, UCHAR_ALPHABETIC) ||
           (U_GET_GC_MASK(character) & kCategories) != 0 || character == kZeroWidthNonJoiner ||
           character == kZeroWidthJoiner;
}

bool isIgnoredAtBoundaries(UChar32 character) {
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
    while (position > 0) {
        UChar32 previous = 0;
        U16_PREV(text.data(), 0, position, previous);
        if (!isIgnoredAtBoundaries(previous)) {
            return beforeWord != isWordCharacter(previous);
        }
    }
    return beforeWord;
}

std::size_t characterCount(std::u16string_view text) {
    return stretchOf(text, text.size()).characters;
}

std::string firstCharacters(std::string_view text, std::size_t count) {
    const auto utf16 = toUtf16(text);
    return toUtf8(std::u16string_view(utf16).substr(0, stretchOf(utf16, count).end));
}

} // namespace tovik
