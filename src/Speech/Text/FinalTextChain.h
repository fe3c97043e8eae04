// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/SystemLog.h"
#include "Platform/UserDefaults.h"
#include "Speech/Text/FillerWords.h"
#include "Speech/Text/TranscriptionFormatter.h"

#include <functional>
#include <string>
#include <string_view>

namespace tovik {

/// What every final transcript goes through before the rest of the program sees it: punctuation spacing, the
/// removal of filler words, and the written forms of what was spoken. A text of any length is cleaned as a
/// whole, in time that grows with its length.
class FinalTextChain {
public:
    /// The locale is that of numbers (TranscriptionFormatter). Settings and log outlive the chain.
    FinalTextChain(UserDefaults& defaults, SystemLog& log, std::string_view locale);

    /// With the user's own locale.
    FinalTextChain(UserDefaults& defaults, SystemLog& log);

    /// Any thread; reads the settings and writes none.
    [[nodiscard]] std::string processTranscription(std::string_view text) const;

    [[nodiscard]] FillerWords& fillerWords() { return fillerWords_; }
    [[nodiscard]] const TranscriptionFormatter& formatter() const { return formatter_; }

private:
    FillerWords fillerWords_;
    TranscriptionFormatter formatter_;
};

/// Runs of full stops become one; each of . ! ? : ; , that a character other than white space follows
/// directly gets a space after it; runs of spaces become one.
[[nodiscard]] std::u16string withSpacedPunctuation(std::u16string_view text);

/// The locale of numbers that an environment names: LC_ALL, else LC_NUMERIC, else LANG; an empty value
/// counts as none. The callback gives the value of a variable, or null.
[[nodiscard]] std::string numberLocale(const std::function<const char*(const char*)>& environment);

} // namespace tovik
