// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// A few English words, to be found in a text case-insensitively. Any thread.
class KnownWords {
public:
    static constexpr std::size_t npos = std::u16string_view::npos;

    /// Words of the letters a to z, such as "one|two|three".
    explicit KnownWords(std::u16string_view words);

    /// Where the word at the position ends, npos when it is none of these. All letters from there on that
    /// fold to a to z count as the word.
    [[nodiscard]] std::size_t endAt(std::u16string_view text, std::size_t position) const;

    /// The first place from a position on where one of the words begins and "\b" matches; npos when there is
    /// none.
    [[nodiscard]] std::size_t nextStart(std::u16string_view text, std::size_t from) const;

private:
    [[nodiscard]] bool contains(std::u16string_view word) const;
    [[nodiscard]] bool mayBegin(std::int32_t character) const;

    std::vector<std::u16string> words_;
    std::size_t longest_ = 0;
    /// A bit for each letter that a word begins with.
    std::uint32_t initials_ = 0;
};

} // namespace tovik
