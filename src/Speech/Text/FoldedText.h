// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// A text under full case folding, the form in which case-insensitive matching compares.
class FoldedText {
public:
    explicit FoldedText(std::u16string_view text);

    [[nodiscard]] std::u16string_view folded() const { return folded_; }

    /// Where the character that begins at this position of the text begins in the folded form.
    [[nodiscard]] std::size_t foldedPosition(std::size_t position) const {
        return positions_.empty() ? position : positions_[position];
    }

private:
    std::u16string folded_;
    /// Empty while folding has kept every length.
    std::vector<std::uint32_t> positions_;
};

/// Where the match of a word in this folded form ends that begins at the position; npos when there is none.
/// The word must end where a character of the text ends.
[[nodiscard]] std::size_t endOfFoldedMatch(std::u16string_view text, std::size_t position,
                                           std::u16string_view foldedWord);

/// Appends what a character folds to.
void appendFolded(std::u16string& folded, std::int32_t character);

} // namespace tovik
