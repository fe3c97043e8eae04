// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/FinalTextChain.h"

#include "Speech/Text/PunctuationSpacing.h"
#include "Speech/Text/Utf16.h"

#include <cstdlib>

namespace tovik {

FinalTextChain::FinalTextChain(UserDefaults& defaults, SystemLog& log, std::string_view locale)
    : fillerWords_(defaults, log),
      formatter_(defaults, log, locale) {}

FinalTextChain::FinalTextChain(UserDefaults& defaults, SystemLog& log)
    : FinalTextChain(defaults, log, numberLocale([](const char* name) { return std::getenv(name); })) {}

std::string FinalTextChain::processTranscription(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    auto utf16 = withSpacedPunctuation(toUtf16(text));
    fillerWords_.removeConfiguredFillerWords(utf16);
    formatter_.apply(utf16);
    return toUtf8(utf16);
}

} // namespace tovik
