// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/SystemLog.h"

#include <string>
#include <string_view>

namespace tovik {

/// No text rule makes a text of more UTF-16 units than this; it gives up instead.
inline constexpr std::size_t kLongestText = 1U << 22U;

/// A line of the log about a rule that gave up on a text. The text itself is never in it.
inline void reportTextFault(SystemLog& log, std::string_view rule, std::string_view reason) {
    log.printLine("[TovikVoice] Text rule " + std::string(rule) + " gave up (" + std::string(reason) +
                  "); the text stays as it was");
}

} // namespace tovik
