// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// A stretch of a text.
struct TextPiece {
    std::string text;
    /// False: it stays as it is. Line breaks, wide gaps, emoji, control characters and endless words, all of
    /// which the engine may lose, move, or take for ever over.
    bool isToTranslate = false;

    bool operator==(const TextPiece&) const = default;
};

/// All of the text, cut into pieces. What is to be translated begins and ends with something else than a
/// space.
[[nodiscard]] std::vector<TextPiece> piecesOf(std::string_view text);

/// Words as the stages of a pipeline read them, the mark for "answer now" included.
[[nodiscard]] std::string toStream(std::string_view words);

/// The words of a pipeline's answer, which ends before its mark; nothing when it is none.
[[nodiscard]] std::optional<std::string> fromStream(std::string_view answer);

} // namespace tovik
