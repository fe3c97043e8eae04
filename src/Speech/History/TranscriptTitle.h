// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace tovik {

/// A transcript in one short line, for a menu: line feeds become spaces, the ends are trimmed, and a text of
/// 43 characters or more shows its first 42 and "...".
[[nodiscard]] std::string transcriptTitle(std::string_view text);

} // namespace tovik
