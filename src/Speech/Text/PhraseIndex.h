// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// Finds out which of many phrases can occur in a text at all, at a price that hardly depends on how many
/// phrases there are.
class PhraseIndex {
public:
    PhraseIndex() = default;
    /// A phrase is known by its place in this list.
    explicit PhraseIndex(const std::vector<std::u16string_view>& phrases);

    /// The phrases from number `first` on that case-insensitively begin at a word boundary of the text; in
    /// ascending order, each once. No phrase that "\b", the phrase and "\b" match is missing.
    [[nodiscard]] std::vector<std::uint32_t> candidates(std::u16string_view text, std::uint32_t first) const;

private:
    struct Entry {
        std::u16string folded;
        std::uint32_t number;
    };

    void appendPhrasesAt(std::u16string_view foldedText, std::uint32_t first,
                         std::vector<std::uint32_t>& found) const;

    /// Sorted by their folded form.
    std::vector<Entry> entries_;
    std::vector<std::uint32_t> emptyPhrases_;
    /// Where the entries that begin with a unit of the first 128 begin; the last is where they end.
    std::vector<std::uint32_t> asciiStarts_;
};

} // namespace tovik
