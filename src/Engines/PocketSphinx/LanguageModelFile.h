// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace tovik {

/// Whether a language model in the library's binary form is all there. The library reads beyond its memory
/// where the end of such a file is missing. The end holds the words, each with a NUL behind it, and before
/// them, in four bytes, how many bytes they are; how many words there are stands at the beginning.
[[nodiscard]] bool isWholeLanguageModel(const std::filesystem::path& file);

} // namespace tovik
