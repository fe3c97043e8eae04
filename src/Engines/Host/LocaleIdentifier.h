// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace tovik {

/// A locale in the form "en-US", from any of the usual ones ("en_US.UTF-8", "en_US@euro"). A language that
/// stands alone gets the region that most of its speakers live in; the C locale counts as "en-US".
[[nodiscard]] std::string canonicalLocaleIdentifier(std::string_view identifier);

/// What LC_ALL, LC_MESSAGES or LANG says, first set one first; empty when none is set.
[[nodiscard]] std::string localeOfEnvironment();

} // namespace tovik
