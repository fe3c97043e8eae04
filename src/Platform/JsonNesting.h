// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>

namespace tovik {

/// Whether brackets outside of strings are nested deeper than so many levels, in a text that may be JSON.
/// Asked before it is parsed: the value of a text of nothing but brackets takes a hundred times its size, and
/// to copy or write it takes a stack as deep. One pass, no allocation.
[[nodiscard]] inline bool isNestedDeeper(std::string_view text, int levels) {
    int depth = 0;
    bool isInString = false;
    for (std::size_t at = 0; at < text.size() && depth <= levels; ++at) {
        const char byte = text[at];
        if (byte == '"') {
            isInString = !isInString;
        } else if (isInString) {
            at += byte == '\\' ? 1 : 0;
        } else if (byte == '[' || byte == '{') {
            ++depth;
        } else if (byte == ']' || byte == '}') {
            --depth;
        }
    }
    return depth > levels;
}

} // namespace tovik
