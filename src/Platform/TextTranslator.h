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

    /// Why there is no translation service, in a sentence for the user; nothing while there is one. The
    /// answer may change while the program runs.
    [[nodiscard]] virtual std::optional<std::string> whyUnavailable() const = 0;

    /// Calls completion on the main thread, now or later, without a result when translation is off,
    /// unavailable or failed. It is called once, or never when the service that took the text never answers.
    virtual void translate(const std::string& text,
                           std::function<void(const std::optional<TranslationResult>&)> completion) = 0;
};

} // namespace tovik
