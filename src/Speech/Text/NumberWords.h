// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tovik {

// English number words and what they stand for. Words are looked up in lower case.

/// "zero" to "nineteen".
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
[[nodiscard]] std::u16string_view monthName(int number);

/// What the words add up to; words that mean no number are ignored, so without any it is 0. Nothing when
/// the number is too large to hold.
[[nodiscard]] std::optional<std::int64_t> spokenNumber(std::u16string_view words);

} // namespace tovik
