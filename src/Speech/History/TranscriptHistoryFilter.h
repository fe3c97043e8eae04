// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Speech/History/TranscriptHistoryEntry.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tovik {

/// An entry of the history that a filter let through, and where it stands in the whole history.
struct FilteredHistoryEntry {
    std::size_t index = 0;
    TranscriptHistoryEntry entry;

    bool operator==(const FilteredHistoryEntry&) const = default;
};

/// Finds transcripts by a piece of their text, capitals or not. Remembers texts it has seen, since the user
/// asks anew with each key. Main thread.
class TranscriptHistoryFilter {
public:
    /// All entries when nothing but white space is in the query, else those whose text holds the trimmed
    /// query as it stands. The order stays.
    [[nodiscard]] std::vector<FilteredHistoryEntry> apply(const std::vector<TranscriptHistoryEntry>& entries,
                                                          std::string_view query);

private:
    const std::string& lowerCasedText(const std::string& text);

    std::unordered_map<std::string, std::string> lowerCasedTexts_;
};

} // namespace tovik
