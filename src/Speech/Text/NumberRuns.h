// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tovik {

// Runs of English number words ("two hundred fifty") in a text. They are found by walking along the text
// rather than by a pattern: a pattern with a loop over words needs memory for every word of a long run and
// looks at a run again from each of its words.

/// A stretch of a text.
struct TextRange {
    std::size_t begin;
    std::size_t end;
};

/// Replaces each amount of two or more number words and "dollars", with the cents that may follow. The
/// callback gets the words of both; leaving the amount alone is nothing.
using CurrencyFormat = std::function<std::optional<std::u16string>(std::u16string_view dollars,
                                                                   std::optional<std::u16string_view> cents)>;
[[nodiscard]] std::u16string replaceCurrencyRuns(std::u16string_view text, const CurrencyFormat& format);

/// Replaces each run of two or more number words that no "$" precedes directly.
using NumberFormat = std::function<std::optional<std::u16string>(std::u16string_view words)>;
[[nodiscard]] std::u16string replaceNumberRuns(std::u16string_view text, const NumberFormat& format);

} // namespace tovik
