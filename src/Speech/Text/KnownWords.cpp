// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/KnownWords.h"

#include "Speech/Text/CharacterClasses.h"
#include "Speech/Text/FoldedText.h"

#include <algorithm>

namespace tovik {

namespace {

constexpr char16_t kAsciiEnd = 0x80;

bool isLetter(char16_t unit) {
    return unit >= u'a' && unit <= u'z';
}

char16_t lowerAscii(char16_t unit) {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
}

std::uint32_t bitOf(char16_t letter) {
    return 1U << static_cast<unsigned>(letter - u'a');
}

} // namespace

KnownWords::KnownWords(std::u16string_view words) {
    for (const auto word : pieces(words, u'|')) {
        words_.emplace_back(word);
        longest_ = std::max(longest_, word.size());
        initials_ |= bitOf(word.front());
    }
}

std::size_t KnownWords::endAt(std::u16string_view text, std::size_t position) const {
    std::u16string word;
    while (position < text.size()) {
        auto length = std::size_t{1};
        const auto before = word.size();
        if (text[position] < kAsciiEnd) {
            word += lowerAscii(text[position]);
        } else {
            const auto character = characterAt(text, position);
            appendFolded(word, character.value);
            length = character.length;
        }
        if (!std::all_of(word.begin() + static_cast<std::ptrdiff_t>(before), word.end(), isLetter)) {
            word.resize(before);
            break;
        }
        if (word.size() > longest_) {
            return npos;
        }
        position += length;
    }
    return contains(word) ? position : npos;
}

std::size_t KnownWords::nextStart(std::u16string_view text, std::size_t from) const {
    bool afterWord = isWordBefore(text, from);
    for (auto position = from; position < text.size();) {
        const auto [character, length] = characterAt(text, position);
        if (!isIgnoredAtBoundaries(character)) {
            const bool isWord = isWordCharacter(character);
            if (isWord && !afterWord && mayBegin(character) && endAt(text, position) != npos) {
                return position;
            }
            afterWord = isWord;
        }
        position += length;
    }
    return npos;
}

bool KnownWords::contains(std::u16string_view word) const {
    return std::find(words_.begin(), words_.end(), word) != words_.end();
}

bool KnownWords::mayBegin(std::int32_t character) const {
    // Others may still fold to one of the letters.
    if (character >= kAsciiEnd) {
        return true;
    }
    const auto letter = lowerAscii(static_cast<char16_t>(character));
    return isLetter(letter) && (initials_ & bitOf(letter)) != 0;
}

} // namespace tovik
