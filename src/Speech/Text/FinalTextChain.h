// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/SystemLog.h"
#include "Platform/UserDefaults.h"
#include "Speech/Text/TranscriptionFormatter.h"

#include <functional>
#include <string>
#include <string_view>

namespace tovik {

/// The words that a transcript is rid of when the user wishes it. The settings are read at each use.
class FillerWords {
public:
    static constexpr std::string_view removeKey = "TovikVoiceRemoveFillerWords";
    static constexpr std::string_view listKey = "TovikVoiceFillerWords";
    static constexpr std::string_view defaultList = "kind of, sort of, um, uh, erm, hmm";

    /// The settings outlive it.
    explicit FillerWords(UserDefaults& defaults);

    /// Any thread.
    [[nodiscard]] bool cleanupEnabled() const;

    /// The list in effect, comma-separated. When what is stored is empty or a default list of earlier days,
    /// today's default is the answer and is stored. Main thread.
    [[nodiscard]] std::string fillerWords();

    /// Stores what the user has typed, the default when that is nothing, and returns the list then in
    /// effect. Main thread.
    std::string saveFillerWords(std::string_view typed);

    /// The text without the filler words, tidied; just as it is when removal is off or the list has no
    /// entries. Any thread; writes no setting.
    [[nodiscard]] std::string removeConfiguredFillerWords(std::string_view text) const;
    void removeConfiguredFillerWords(std::u16string& text) const;

private:
    [[nodiscard]] std::string effectiveList() const;

    UserDefaults& defaults_;
};

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
