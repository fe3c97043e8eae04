// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/X11/PasteChords.h"

#include "Platform/AsciiCase.h"
#include "Platform/SystemLog.h"
#include "Platform/UserDefaults.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <nlohmann/json.hpp>

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

// Application ids of Debian's terminals, in lower case.
constexpr std::array kTerminals{"gnome-terminal",
                                "gnome-terminal-server",
                                "org.gnome.terminal",
                                "org.gnome.console",
                                "kgx",
                                "xfce4-terminal",
                                "mate-terminal",
                                "lxterminal",
                                "qterminal",
                                "konsole",
                                "org.kde.konsole",
                                "terminator",
                                "tilix",
                                "guake",
                                "yakuake",
                                "terminology",
                                "sakura",
                                "roxterm",
                                "termit",
                                "kitty",
                                "alacritty",
                                "foot",
                                "wezterm"};
// They paste with Shift+Insert only, and do so whether or not Control is held as well.
constexpr std::array kPlainTerminals{"xterm", "uxterm",      "urxvt", "rxvt",
                                     "st",    "st-256color", "eterm", "mlterm"};

// Further ones that are known to paste from the primary selection; what they do beside Control is not. GVim
// is no terminal, but Debian makes Shift+Insert the middle mouse button there.
constexpr std::array kOtherPrimaryPasters{
    "aterm",    "cool-retro-term", "deepin-terminal", "evilvte", "ghostty", "gvim", "kterm",
    "lilyterm", "mrxvt",           "pterm",           "putty",   "tilda",   "zutty"};
// Editors in which Ctrl+V is no paste: it scrolls, or begins to mark a block.
constexpr std::array kEditorsOfTheirOwn{"emacs", "xemacs", "nvim-qt", "neovide"};

bool isAmong(const auto& names, const std::vector<std::string>& ids) {
    return std::any_of(ids.begin(), ids.end(), [&](const std::string& id) {
        return std::find(names.begin(), names.end(), asciiLowerCased(id)) != names.end();
    });
}

/// The user's entry for the first of these ids that has one.
std::optional<PropertyValue> entryFor(const PropertyValue& table, const std::vector<std::string>& ids) {
    for (const auto& id : ids) {
        const auto wanted = asciiLowerCased(id);
        for (const auto& [name, chord] : table.items()) {
            if (asciiLowerCased(name) == wanted) {
                return chord;
            }
        }
    }
    return std::nullopt;
}

std::string asText(const PropertyValue& value) {
    return value.is_string() ? value.get<std::string>()
                             : value.dump(-1, ' ', true, PropertyValue::error_handler_t::replace);
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

PasteChords::PasteChords(const UserDefaults& defaults, SystemLog& log) : defaults_(defaults), log_(log) {}

PasteChord PasteChords::chordFor(const std::vector<std::string>& applicationIds) {
    return usersChord(applicationIds).value_or(defaultChord());
}

std::optional<PasteChord> PasteChords::usersChord(const std::vector<std::string>& applicationIds) {
    const auto table = defaults_.value("platform.pasteChords");
    if (!table || !table->is_object()) {
        return std::nullopt;
    }
    const auto entry = entryFor(*table, applicationIds);
    if (!entry) {
        return std::nullopt;
    }
    auto chord = entry->is_string() ? PasteChord::parse(entry->get<std::string>()) : std::nullopt;
    if (!chord && reported_.insert(asText(*entry)).second) {
        log_.printLine("[TovikVoice] \"" + asText(*entry) +
                       "\" in platform.pasteChords is no key chord; pasting with Shift+Insert");
    }
    return chord;
}

std::optional<PasteChord> PasteChords::chordBesideControl(const std::vector<std::string>& applicationIds) {
    using enum PasteChord::Modifier;
    if (usersChord(applicationIds)) {
        return std::nullopt;
    }
    if (isAmong(kPlainTerminals, applicationIds)) {
        return defaultChord();
    }
    if (isAmong(kTerminals, applicationIds)) {
        return PasteChord{{control, shift}, XK_v};
    }
    if (isAmong(kEditorsOfTheirOwn, applicationIds) || pastesFromPrimary(applicationIds)) {
        return std::nullopt;
    }
    return PasteChord{{control}, XK_v};
}

bool PasteChords::pastesFromPrimary(const std::vector<std::string>& applicationIds) const {
    if (isAmong(kTerminals, applicationIds) || isAmong(kPlainTerminals, applicationIds) ||
        isAmong(kOtherPrimaryPasters, applicationIds)) {
        return true;
    }
    const auto listed = defaults_.value("platform.primaryPasters");
    return listed && listed->is_array() &&
           std::any_of(applicationIds.begin(), applicationIds.end(), [&](const std::string& id) {
               return std::any_of(listed->begin(), listed->end(), [&](const PropertyValue& entry) {
                   return entry.is_string() &&
                          asciiLowerCased(entry.get<std::string>()) == asciiLowerCased(id);
               });
           });
}

const PasteChord& PasteChords::defaultChord() {
    static const PasteChord chord{{PasteChord::Modifier::shift}, XK_Insert};
    return chord;
}

} // namespace tovik
