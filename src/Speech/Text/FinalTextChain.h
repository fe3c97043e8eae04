// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/SystemLog.h"
#include "Platform/UserDefaults.h"
#include "Speech/Text/FillerWords.h"
#include "Speech/Text/TranscriptionFormatter.h"

#include <string>
#include <string_view>

namespace tovik {

/// What every final transcript goes through before the rest of the program sees it: punctuation spacing, the
/// removal of filler words, and the written forms of what was spoken.
class FinalTextChain {
public:
    /// The locale is that of numbers (DecimalFormat). Settings and log outlive the chain.
    FinalTextChain(UserDefaults& defaults, SystemLog& log, std::string_view locale);

    /// With the user's own locale.
    FinalTextChain(UserDefaults& defaults, SystemLog& log);

    /// Any thread; reads the settings and writes none.
    [[nodiscard]] std::string processTranscription(std::string_view text);

    [[nodiscard]] FillerWords& fillerWords() { return fillerWords_; }
    [[nodiscard]] const TranscriptionFormatter& formatter() const { return formatter_; }

private:
    FillerWords fillerWords_;
    TranscriptionFormatter formatter_;
};

} // namespace tovik
