// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/SystemLog.h"
#include "Platform/UserDefaults.h"
#include "Speech/Text/PhraseReplacer.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tovik {

/// The user's corrections: what the recognizer hears (the heard phrase) and what should stand in the
/// transcript instead. Every change is stored before the call returns. Main thread.
class TranscriptionDictionary {
public:
    using Mapping = std::map<std::string, std::string>;

    static constexpr std::string_view dictionaryKey = "transcription.customDictionary";

    /// Loads what is stored. Both outlive the dictionary.
    TranscriptionDictionary(UserDefaults& defaults, SystemLog& log);

    /// Takes the stored corrections. When none are stored, or what is stored is not a map of strings, the
    /// program's own few corrections take their place and are stored; the unusable value is kept aside in
    /// the defaults (UserDefaults::keepAside).
    void load();

    /// A heard phrase is stored in lower case; a second correction of it replaces the first.
    void setCorrection(std::string_view heard, std::string_view replacement);
    void removeCorrection(std::string_view heard);

    /// Takes a stored phrase away, whatever its case there, and sets a correction in its place, in one step:
    /// a program that dies meanwhile loses neither.
    void replaceCorrection(std::string_view stored, std::string_view heard, std::string_view replacement);

    [[nodiscard]] const Mapping& getDictionary() const { return mapping_; }

    /// Replaces all corrections by these, taken as they stand.
    void setDictionary(Mapping mapping);

    /// Replaces all corrections by those in a text such as "heard → written, other = another".
    void updateFromDisplayString(std::string_view text);

    /// The corrections in such a text; pieces that are none are left out.
    [[nodiscard]] static Mapping parseDisplayString(std::string_view text);

    /// The transcript with every correction applied, the longest heard phrase first, and each to what those
    /// before it have left (PhraseReplacer). Corrections that would make it grow without end leave it as it
    /// is, and a line of the log says so.
    [[nodiscard]] std::string apply(std::string_view transcript);

private:
    void mappingChanged();

    UserDefaults& defaults_;
    SystemLog& log_;
    Mapping mapping_;
    /// Made of the mapping when it is needed first.
    std::optional<PhraseReplacer> replacer_;
};

} // namespace tovik
