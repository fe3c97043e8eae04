// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/FoldedText.h"

#include "Speech/Text/CharacterClasses.h"

#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <array>

namespace tovik {

namespace {

constexpr char16_t kAsciiEnd = 0x80;

char16_t asciiLower(char16_t unit) {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit - u'A' + u'a') : unit;
}

} // namespace

void appendFolded(std::u16string& folded, std::int32_t character) {
    if (character < kAsciiEnd) {
        folded += asciiLower(static_cast<char16_t>(character));
        return;
    }
    std::array<char16_t, U16_MAX_LENGTH> source{};
    std::int32_t length = 0;
    U16_APPEND_UNSAFE(source.data(), length, character);
    if (!u_hasBinaryProperty(character, UCHAR_CHANGES_WHEN_CASEFOLDED)) {
        folded.append(source.data(), static_cast<std::size_t>(length));
        return;
    }
    std::array<char16_t, 8> target{};
    UErrorCode status = U_ZERO_ERROR;
    const auto folds = u_strFoldCase(target.data(), static_cast<std::int32_t>(target.size()), source.data(),
                                     length, U_FOLD_CASE_DEFAULT, &status);
    folded.append(target.data(), static_cast<std::size_t>(folds));
}

FoldedText::FoldedText(std::u16string_view text) {
    folded_.resize(text.size());
    std::size_t position = 0;
    for (; position < text.size() && text[position] < kAsciiEnd; ++position) {
        folded_[position] = asciiLower(text[position]);
    }
    folded_.resize(position);
    while (position < text.size()) {
        const auto begin = folded_.size();
        const auto [character, length] = characterAt(text, position);
        appendFolded(folded_, character);
        if (positions_.empty() && folded_.size() - begin != length) {
            positions_.reserve(text.size() + 1);
            for (std::uint32_t i = 0; i < position; ++i) {
                positions_.push_back(i);
            }
            positions_.resize(position + length, static_cast<std::uint32_t>(begin));
        } else if (!positions_.empty()) {
            positions_.resize(position + length, static_cast<std::uint32_t>(begin));
        }
        position += length;
    }
    if (!positions_.empty()) {
        positions_.push_back(static_cast<std::uint32_t>(folded_.size()));
    }
}

std::size_t endOfFoldedMatch(std::u16string_view text, std::size_t position, std::u16string_view foldedWord) {
    std::u16string folded;
    while (folded.size() < foldedWord.size()) {
        if (position >= text.size()) {
            return std::u16string_view::npos;
        }
        const auto [character, length] = characterAt(text, position);
        appendFolded(folded, character);
        if (!foldedWord.starts_with(folded)) {
            return std::u16string_view::npos;
        }
        position += length;
    }
    return position;
}

} // namespace tovik
