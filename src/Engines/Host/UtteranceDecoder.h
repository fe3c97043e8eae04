// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace tovik {

/// Decodes one utterance after the other from samples at sampleRate. One thread; each call may take long.
class UtteranceDecoder {
public:
    static constexpr double sampleRate = 16000;

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

} // namespace tovik
