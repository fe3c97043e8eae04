// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/PunctuationSpacing.h"

#include "Speech/Text/CharacterClasses.h"

namespace tovik {

namespace {

std::u16string withSingle(char16_t unit, std::u16string_view text) {
    std::u16string result;
    result.reserve(text.size());
    for (const auto current : text) {
        if (current != unit || result.empty() || result.back() != unit) {
            result += current;
        }
    }
    return result;
}

std::u16string withSpaceAfter(char16_t mark, std::u16string_view text) {
    std::u16string result;
    result.reserve(text.size() + text.size() / 8);
    for (std::size_t i = 0; i < text.size();) {
        result += text[i];
        if (text[i++] != mark || i == text.size()) {
            continue;
        }
        const auto [next, length] = characterAt(text, i);
        if (!isWhiteSpace(next)) {
            // The character that follows belongs to this place, so that of "!!!" only the first mark is
            // followed by a space.
            result.append(1, u' ').append(text, i, length);
            i += length;
        }
    }
    return result;
}

} // namespace

std::u16string withSpacedPunctuation(std::u16string_view text) {
    auto result = withSingle(u'.', text);
    for (const auto mark : {u'.', u'!', u'?', u':', u';', u','}) {
        if (result.find(mark) != std::u16string::npos) {
            result = withSpaceAfter(mark, result);
        }
    }
    return withSingle(u' ', result);
}

std::u16string tidied(std::u16string_view text) {
    constexpr std::u16string_view kMarks = u",.!?;:";
    const auto single = withSingle(u' ', text);
    std::u16string result;
    result.reserve(single.size());
    for (const auto unit : single) {
        if (kMarks.find(unit) != std::u16string_view::npos) {
            while (!result.empty() && isWhiteSpace(result.back())) {
                result.pop_back();
            }
        }
        result += unit;
    }
    return std::u16string(trimmed(std::u16string_view(result)));
}

} // namespace tovik
