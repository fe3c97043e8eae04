// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/TranslationService.h"

#include <optional>
#include <string>
#include <vector>

namespace tovik {

/// What a mode for the pair may be called; the first that is installed is the best. Empty for languages that
/// are not in the program's table.
[[nodiscard]] std::vector<std::string> modeNames(const TranslationPair& pair);

/// The Debian package that brings the pair; nothing when there is none.
[[nodiscard]] std::optional<std::string> packageOfPair(const TranslationPair& pair);

} // namespace tovik
