// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace tovik {

// Passes over a whole text, each in time that grows with its length and nothing else.

/// Runs of full stops become one; each of . ! ? : ; , that a character other than white space follows
/// directly gets a space after it; runs of spaces become one.
[[nodiscard]] std::u16string withSpacedPunctuation(std::u16string_view text);

/// Runs of spaces become one, white space before , . ! ? ; : goes, and so does white space at both ends.
[[nodiscard]] std::u16string tidied(std::u16string_view text);

} // namespace tovik
