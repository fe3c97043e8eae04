// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace tovik {

/// How an English word that no dictionary holds is probably said: its phones in ARPAbet, with blanks between
/// them. The word is of letters a to z; what else is in it is passed over. Empty when nothing can be said.
[[nodiscard]] std::string letterToSound(std::string_view word);

/// The same when the word is spelled out, letter by letter.
[[nodiscard]] std::string spelledOut(std::string_view word);

} // namespace tovik
