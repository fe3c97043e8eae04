// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// What one reading of a sound counts for more when it holds a word to favour; the library's own measure is
/// the logarithm of a likelihood.
inline constexpr double kFavour = 3;

/// The text in a result of the Vosk library, of the alternatives the best one; empty when there is none.
/// favoured: words and phrases in lower case.
[[nodiscard]] std::string voskText(std::string_view answer, const std::vector<std::string>& favoured);

/// The text in a partial result.
[[nodiscard]] std::string voskPartial(std::string_view answer);

} // namespace tovik
