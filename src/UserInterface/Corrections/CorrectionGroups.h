// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Speech/Text/TranscriptionDictionary.h"

#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// All phrases that are corrected to the same text.
struct CorrectionGroup {
    /// At least one.
    std::vector<std::string> heardValues;
    std::string corrected;

    bool operator==(const CorrectionGroup&) const = default;
};

/// The corrections as the editor shows them: by replacement, and in each group by heard phrase. The order is
/// that of the characters' code points: capitals come before small letters.
[[nodiscard]] std::vector<CorrectionGroup> correctionGroups(const TranscriptionDictionary::Mapping& mapping);

/// The base, or the first of "base 2", "base 3", ... that is no heard phrase yet.
[[nodiscard]] std::string freeHeardPhrase(const TranscriptionDictionary::Mapping& mapping,
                                          std::string_view base);

/// Heard phrases as one text, by which a control of a group knows them.
[[nodiscard]] std::string joinedHeardPhrases(const std::vector<std::string>& heardValues);

/// The phrases in such a text; empty ones are dropped.
[[nodiscard]] std::vector<std::string> heardPhrasesIn(std::string_view identifier);

} // namespace tovik
