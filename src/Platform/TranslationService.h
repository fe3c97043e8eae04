// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"
#include "Platform/Subscription.h"

#include <functional>
#include <optional>
#include <string>
#include <tuple>

namespace tovik {

/// From one language to another, by the identifiers of the program's language table.
struct TranslationPair {
    std::string source;
    std::string target;

    bool operator==(const TranslationPair&) const = default;
    bool operator<(const TranslationPair& other) const {
        return std::tie(source, target) < std::tie(other.source, other.target);
    }
};

enum class TranslationAvailability {
    installed,
    /// Possible in principle, but something has yet to be fetched.
    supported,
    unsupported,
};

/// Translates a text of one pair. Calls completion exactly once, later, on the main thread; also when the
/// session is dropped meanwhile, but no more when the service is gone. The service sees to it that the answer
/// does not take for ever. Line breaks and characters that the service does not know survive.
using TranslationSession =
    std::function<void(const std::string& text, std::function<void(const Result<std::string>&)> completion)>;

/// What translates on this desktop. Main thread.
class TranslationService {
public:
    using SessionHandler = std::function<void(const TranslationSession&)>;

    virtual ~TranslationService() = default;

    /// Why nothing can be translated here at all, as a sentence for the user; nothing when there is a
    /// service.
    [[nodiscard]] virtual std::optional<std::string> whyUnavailable() const = 0;

    /// Calls completion exactly once, later. An error: the service could not be asked.
    virtual void availability(const TranslationPair& pair,
                              std::function<void(const Result<TranslationAvailability>&)> completion) = 0;

    /// Hands over a session for the pair, later: usually once, possibly again and again, possibly never.
    /// Dropping the token ends the handing over, and leaves what is being translated alone. Nothing, and no
    /// session: this service works only inside a visible window of the program, and none is visible.
    [[nodiscard]] virtual std::optional<Subscription> offerSessions(const TranslationPair& pair,
                                                                    SessionHandler handler) = 0;
};

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
