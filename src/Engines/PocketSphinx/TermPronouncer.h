// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// Finds out how the terms of a user's vocabulary are said, which may be names, phrases or abbreviations.
class TermPronouncer {
public:
    /// The phones of a word in lower case; nothing when the dictionary does not have it.
    using Dictionary = std::function<std::optional<std::string>(const std::string& word)>;

    explicit TermPronouncer(Dictionary dictionary);

    /// The likely pronunciations in ARPAbet, with blanks between the phones, the likeliest first. Empty when
    /// the term has no letters that could be said.
    [[nodiscard]] std::vector<std::string> pronounce(std::string_view term) const;

private:
    [[nodiscard]] std::vector<std::string> pronounceWord(const std::string& word) const;
    [[nodiscard]] std::optional<std::string> compound(const std::string& word) const;

    const Dictionary dictionary_;
};

} // namespace tovik
