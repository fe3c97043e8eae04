// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/X11/PasteChord.h"

#include "Platform/AsciiCase.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <algorithm>
#include <cctype>
#include <string>

namespace tovik {
namespace {

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::optional<PasteChord::Modifier> modifierNamed(std::string_view name) {
    const std::string lower = asciiLowerCased(name);
    if (lower == "ctrl" || lower == "control") {
        return PasteChord::Modifier::control;
    }
    if (lower == "shift") {
        return PasteChord::Modifier::shift;
    }
    if (lower == "alt") {
        return PasteChord::Modifier::alt;
    }
    if (lower == "super") {
        return PasteChord::Modifier::super;
    }
    return std::nullopt;
}

/// Keysym names have a case of their own; people write "insert" and "INSERT".
unsigned long keysymNamed(std::string_view name) {
    std::string spelling(name);
    if (const KeySym exact = XStringToKeysym(spelling.c_str()); exact != NoSymbol) {
        KeySym lower = exact;
        KeySym upper = exact;
        XConvertCase(exact, &lower, &upper);
        return lower;
    }
    spelling = asciiLowerCased(name);
    if (const KeySym lower = XStringToKeysym(spelling.c_str()); lower != NoSymbol) {
        return lower;
    }
    if (!spelling.empty()) {
        spelling.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(spelling.front())));
    }
    return XStringToKeysym(spelling.c_str());
}

} // namespace

std::optional<PasteChord> PasteChord::parse(std::string_view text) {
    PasteChord chord;
    for (auto plus = text.find('+'); plus != std::string_view::npos; plus = text.find('+')) {
        const auto modifier = modifierNamed(trimmed(text.substr(0, plus)));
        if (!modifier ||
            std::find(chord.modifiers.begin(), chord.modifiers.end(), *modifier) != chord.modifiers.end()) {
            return std::nullopt;
        }
        chord.modifiers.push_back(*modifier);
        text.remove_prefix(plus + 1);
    }
    const auto keyName = trimmed(text);
    chord.keysym = modifierNamed(keyName) ? NoSymbol : keysymNamed(keyName);
    if (chord.keysym == NoSymbol || IsModifierKey(chord.keysym)) {
        return std::nullopt;
    }
    return chord;
}

} // namespace tovik
