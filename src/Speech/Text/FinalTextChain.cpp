// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/FinalTextChain.h"

#include "Speech/Text/Unicode.h"

#include <cstdlib>

namespace tovik {

namespace {

std::u16string withSpaceAfter(char16_t mark, std::u16string_view text) {
    std::u16string result;
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

FinalTextChain::FinalTextChain(UserDefaults& defaults, SystemLog& log, std::string_view locale)
    : fillerWords_(defaults),
      formatter_(defaults, log, locale) {}

FinalTextChain::FinalTextChain(UserDefaults& defaults, SystemLog& log)
    : FinalTextChain(defaults, log, numberLocale([](const char* name) { return std::getenv(name); })) {}

std::string FinalTextChain::processTranscription(std::string_view text) const {
    if (text.empty()) {
        return {};
    }
    auto utf16 = withSpacedPunctuation(toUtf16(text));
    fillerWords_.removeConfiguredFillerWords(utf16);
    formatter_.apply(utf16);
    return toUtf8(utf16);
}

std::u16string withSpacedPunctuation(std::u16string_view text) {
    auto result = withSingle(u'.', text);
    for (const auto mark : {u'.', u'!', u'?', u':', u';', u','}) {
        result = withSpaceAfter(mark, result);
    }
    return withSingle(u' ', result);
}

std::string numberLocale(const std::function<const char*(const char*)>& environment) {
    for (const auto* name : {"LC_ALL", "LC_NUMERIC", "LANG"}) {
        const auto* value = environment(name);
        if (value != nullptr && *value != '\0') {
            return value;
        }
    }
    return "";
}

} // namespace tovik
