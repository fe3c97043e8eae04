// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace tovik {

struct TranslationResult {
    std::string originalText;
    std::string translatedText;
    std::string sourceLanguage;
    std::string targetLanguage;

    bool operator==(const TranslationResult&) const = default;
};

/// Translates a transcript between the languages that the user chose. Main thread.
class TextTranslator {
public:
    virtual ~TextTranslator() = default;

    /// Calls completion exactly once on the main thread, without a result when translation is off,
    /// unavailable or failed.
    virtual void translate(const std::string& text,
                           std::function<void(const std::optional<TranslationResult>&)> completion) = 0;
};

} // namespace tovik
