// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/X11/PasteChords.h"

#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"

#include <X11/keysym.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace tovik;
using namespace tovik::test;

using Modifier = PasteChord::Modifier;

struct Row {
    const char* name;
    const char* text;
    std::optional<PasteChord> chord;
};

std::ostream& operator<<(std::ostream& out, const Row& row) {
    return out << '"' << row.text << '"';
}

class PasteChordText : public testing::TestWithParam<Row> {};

TEST_P(PasteChordText, whenParsed_isTheChordOrNone) {
    EXPECT_EQ(PasteChord::parse(GetParam().text), GetParam().chord);
}

const Row kRows[] = {
    {"shiftInsert", "Shift+Insert", PasteChord{{Modifier::shift}, XK_Insert}},
    {"controlV", "Ctrl+V", PasteChord{{Modifier::control}, XK_v}},
    {"controlShiftV", "Ctrl+Shift+V", PasteChord{{Modifier::control, Modifier::shift}, XK_v}},
    {"orderIsKept", "Shift+Ctrl+V", PasteChord{{Modifier::shift, Modifier::control}, XK_v}},
    {"allModifiers", "Ctrl+Shift+Alt+Super+F1",
     PasteChord{{Modifier::control, Modifier::shift, Modifier::alt, Modifier::super}, XK_F1}},
    {"keyAlone", "F18", PasteChord{{}, XK_F18}},
    {"longName", "Control+v", PasteChord{{Modifier::control}, XK_v}},
    {"lowerCase", "shift+insert", PasteChord{{Modifier::shift}, XK_Insert}},
    {"upperCase", "SHIFT+INSERT", PasteChord{{Modifier::shift}, XK_Insert}},
    {"spaces", " Ctrl + Shift + V ", PasteChord{{Modifier::control, Modifier::shift}, XK_v}},
    {"letterOfAnotherScript", "Ctrl+Cyrillic_EM", PasteChord{{Modifier::control}, XK_Cyrillic_em}},
    {"nothing", "", std::nullopt},
    {"spaceOnly", "  ", std::nullopt},
    {"plusOnly", "+", std::nullopt},
    {"keyMissing", "Ctrl+", std::nullopt},
    {"modifierMissing", "+V", std::nullopt},
    {"modifierAlone", "Shift", std::nullopt},
    {"modifierAsKey", "Ctrl+Shift", std::nullopt},
    {"modifierKeysymAsKey", "Ctrl+Shift_L", std::nullopt},
    {"modifierTwice", "Ctrl+Ctrl+V", std::nullopt},
    {"unknownModifier", "Meta+V", std::nullopt},
    {"unknownKey", "Ctrl+Nonsense", std::nullopt},
    {"keyFirst", "V+Ctrl", std::nullopt},
};

INSTANTIATE_TEST_SUITE_P(Rows, PasteChordText, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

struct BesideControl {
    const char* name;
    std::vector<std::string> ids;
    const char* chord; ///< empty: none
};

class PasteChordsBesideControl : public testing::TestWithParam<BesideControl> {};

TEST_P(PasteChordsBesideControl, whenControlIsHeld_isWhatPastesThere) {
    MemoryUserDefaults defaults;
    defaults.set("platform.primaryPasters", {"my-terminal"});
    defaults.set("platform.pasteChords", PropertyValue{{"XTerm-of-mine", "Shift+F5"}, {"wrong", "Nonsense"}});
    RecordingLog log;
    PasteChords chords(defaults, log);
    EXPECT_EQ(chords.chordBesideControl(GetParam().ids), PasteChord::parse(GetParam().chord));
}

INSTANTIATE_TEST_SUITE_P(Rows, PasteChordsBesideControl,
                         testing::Values(BesideControl{"editor", {"mousepad"}, "Ctrl+V"},
                                         BesideControl{"unknown", {}, "Ctrl+V"},
                                         BesideControl{"vteTerminal", {"Gnome-terminal"}, "Ctrl+Shift+V"},
                                         BesideControl{"konsole", {"window", "konsole"}, "Ctrl+Shift+V"},
                                         BesideControl{"xterm", {"xterm", "XTerm"}, "Shift+Insert"},
                                         BesideControl{"emacs", {"emacs", "Emacs"}, ""},
                                         BesideControl{"gvim", {"gvim", "Gvim"}, ""},
                                         BesideControl{"tilda", {"Tilda"}, ""},
                                         BesideControl{"putty", {"putty", "Putty"}, ""},
                                         BesideControl{"listed", {"My-Terminal"}, ""},
                                         BesideControl{"usersOwn", {"xterm", "xterm-of-mine"}, ""},
                                         BesideControl{"usersMistake", {"wrong"}, "Ctrl+V"}),
                         [](const auto& row) { return std::string(row.param.name); });

} // namespace
