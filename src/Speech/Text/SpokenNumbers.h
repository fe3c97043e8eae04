// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tovik {

// English number words, what they stand for, and runs of them in a text. Any thread.

/// "zero" to "nineteen". Words are looked up in lower case, here and below.
[[nodiscard]] std::optional<int> onesValue(std::u16string_view word);
/// "twenty", "thirty" to "ninety".
[[nodiscard]] std::optional<int> tensValue(std::u16string_view word);
/// "first" to "twentieth", and "thirtieth": 1 to 20, and 30.
[[nodiscard]] std::optional<int> ordinalValue(std::u16string_view word);
/// "1st", "2nd", "3rd", "4th".
[[nodiscard]] std::u16string writtenOrdinal(int value);
/// "january" to "december": 1 to 12.
[[nodiscard]] std::optional<int> monthNumber(std::u16string_view word);
/// "January" to "December" for 1 to 12.
[[nodiscard]] std::u16string monthName(int number);

// The words as alternatives of a regular expression, such as "one|two|three".

/// Of values from 0 to 19.
[[nodiscard]] std::u16string onesWords(int from, int to);
/// Of 20, 30 and so on, up to 90.
[[nodiscard]] std::u16string tensWords(int from, int to);
/// Of values from 1 to 20; "thirtieth" is not among them.
[[nodiscard]] std::u16string ordinalWords(int from, int to);
[[nodiscard]] std::u16string monthWords();

/// What the words add up to; words that mean no number are ignored, so without any it is 0. Nothing when
/// the number is too large to hold.
[[nodiscard]] std::optional<std::int64_t> spokenNumber(std::u16string_view words);

/// Replaces each amount of two or more number words and "dollars", with the cents that may follow. The
/// callback gets the words of both; leaving the amount alone is nothing.
using CurrencyFormat = std::function<std::optional<std::u16string>(std::u16string_view dollars,
                                                                   std::optional<std::u16string_view> cents)>;
[[nodiscard]] std::u16string replaceCurrencyRuns(std::u16string_view text, const CurrencyFormat& format);

/// Replaces each run of two or more number words that no "$" precedes directly.
using NumberFormat = std::function<std::optional<std::u16string>(std::u16string_view words)>;
[[nodiscard]] std::u16string replaceNumberRuns(std::u16string_view text, const NumberFormat& format);

} // namespace tovik
