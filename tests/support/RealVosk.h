// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace tovik::test {

/// The folder to which tools/fetch-vosk has brought the real library, and perhaps a model.
inline std::string realVoskFolder() {
    const char* const folder = std::getenv("TOVIK_REAL_VOSK");
    if (folder == nullptr) {
        throw std::runtime_error(
            "TOVIK_REAL_VOSK names no folder: run this with ctest, after tools/fetch-vosk");
    }
    return folder;
}

} // namespace tovik::test
