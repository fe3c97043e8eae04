// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace tovik {

/// Lower-cases the letters A to Z, whatever the locale, and leaves all else alone.
inline std::string asciiLowerCased(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return lower;
}

} // namespace tovik
