// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Host/Protocol.h"

#include <functional>
#include <memory>
#include <string>

namespace tovik {

/// Decodes one utterance after the other from samples at kEngineRate. One thread; each call may take long.
class UtteranceDecoder {
public:
    virtual ~UtteranceDecoder() = default;

    /// Between utterances: the words and phrases that the next ones will favour. Whatever it takes to know
    /// them is then done already when an utterance begins.
    virtual Result<void> prepare(const std::vector<std::string>& contextualStrings) = 0;

    /// Begins an utterance in which the given words and phrases are likelier than usual.
    virtual Result<void> begin(const std::vector<std::string>& contextualStrings) = 0;
    virtual Result<void> accept(std::span<const std::int16_t> samples) = 0;
    /// What the utterance sounds like so far; empty when there is nothing to tell yet.
    [[nodiscard]] virtual std::string hypothesis() = 0;
    /// Ends the utterance: its text, or the error "No speech detected".
    [[nodiscard]] virtual Result<std::string> finish() = 0;
};

/// Words and more words, either of which may be empty, with a space between them.
inline std::string joined(const std::string& words, const std::string& more) {
    return words.empty() || more.empty() ? words + more : words + ' ' + more;
}

/// Loads a decoder and has it do what comes in on standard input, as Protocol.h says, until that ends; the
/// whole life of tovik-engine and of programs that stand in for it in tests. Ends the process at the end,
/// without any clearing up, since nobody knows what a library would do on its way out.
///
/// Loading is done at a lower priority, so that a big model does not hold up the desktop; decoding is not.
/// What a library writes to standard output goes to standard error. The process dies with the thread that has
/// started it.
[[noreturn]] void serveDecoder(const std::function<Result<std::unique_ptr<UtteranceDecoder>>()>& load);

} // namespace tovik
