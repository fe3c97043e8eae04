// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/UserCharacters.h"

#include "Speech/Text/Utf16.h"

#include <unicode/brkiter.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cstdint>
#include <memory>

namespace tovik {

namespace {

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
    const auto isPlain = [](char16_t unit) { return unit < 0x80 && unit != u'\r'; };
    auto* iterator = characterIterator();
    if (iterator == nullptr || std::all_of(text.begin(), text.end(), isPlain)) {
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

std::size_t characterCount(std::string_view text) {
    return characterCount(toUtf16(text));
}

std::size_t characterCount(std::u16string_view text) {
    return stretchOf(text, text.size()).characters;
}

std::string firstCharacters(std::string_view text, std::size_t count) {
    const auto utf16 = toUtf16(text);
    return toUtf8(std::u16string_view(utf16).substr(0, stretchOf(utf16, count).end));
}

} // namespace tovik
