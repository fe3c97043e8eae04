// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/Utf16.h"

#include <unicode/ustring.h>

#include <algorithm>
#include <cstdint>

namespace tovik {

namespace {

constexpr UChar32 kReplacementCharacter = 0xFFFD;

using CaseMapping = std::int32_t (*)(char16_t*, std::int32_t, const char16_t*, std::int32_t, const char*,
                                     UErrorCode*);

std::u16string caseMapped(std::u16string_view text, CaseMapping map) {
    // A mapping makes at most three units of one.
    std::u16string mapped(text.size() * 3, u'\0');
    UErrorCode status = U_ZERO_ERROR;
    const auto length = map(mapped.data(), static_cast<std::int32_t>(mapped.size()), text.data(),
                            static_cast<std::int32_t>(text.size()), "", &status);
    if (U_FAILURE(status)) {
        return std::u16string(text);
    }
    mapped.resize(static_cast<std::size_t>(length));
    return mapped;
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
    return caseMapped(text, u_strToLower);
}

std::u16string upperCased(std::u16string_view text) {
    return caseMapped(text, u_strToUpper);
}

} // namespace tovik
