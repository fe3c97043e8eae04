// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace tovik {

/// Keys that are pressed together to paste.
struct PasteChord {
    enum class Modifier { control, shift, alt, super };

    /// In the order in which they are pressed.
    std::vector<Modifier> modifiers;
    /// The X keysym of the key pressed last, in its unshifted form.
    unsigned long keysym = 0;

    bool operator==(const PasteChord&) const = default;

    /// Reads a chord such as "Ctrl+Shift+V", "Shift+Insert" or "F18": modifiers (Ctrl or Control, Shift, Alt,
    /// Super) and one key by its keysym name, joined by plus signs, in any case. Nothing when it is none.
    static std::optional<PasteChord> parse(std::string_view text);
};

} // namespace tovik
