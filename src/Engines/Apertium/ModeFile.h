// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"

#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// A program of a pipeline and its arguments.
using Stage = std::vector<std::string>;

/// The stages that a mode file of Apertium names, each told to answer whenever a text is over instead of when
/// its input ends, and not to mark the words that it does not know. Fails on what is not a plain pipeline of
/// programs.
[[nodiscard]] Result<std::vector<Stage>> stagesOfMode(std::string_view content);

} // namespace tovik
