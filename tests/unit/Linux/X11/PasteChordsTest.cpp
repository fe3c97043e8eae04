// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/X11/PasteChords.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"

#include <gtest/gtest.h>

namespace {

using namespace tovik;
using namespace tovik::test;

struct BesideControl {
    const char* name;
    std::vector<std::string> ids;
    const char* chord;
};

class PasteChordsBesideControl : public testing::TestWithParam<BesideControl> {};

TEST_P(PasteChordsBesideControl, whenControlIsHeld_isWhatPastesThere) {
    const MemoryUserDefaults defaults;
    RecordingLog log;
    PasteChords chords(defaults, log);
    EXPECT_EQ(chords.chordBesideControl(GetParam().ids), PasteChord::parse(GetParam().chord));
}

INSTANTIATE_TEST_SUITE_P(Rows, PasteChordsBesideControl,
                         testing::Values(BesideControl{"editor", {"mousepad"}, "Ctrl+V"},
                                         BesideControl{"unknown", {}, "Ctrl+V"},
                                         BesideControl{"vteTerminal", {"Gnome-terminal"}, "Ctrl+Shift+V"},
                                         BesideControl{"konsole", {"window", "konsole"}, "Ctrl+Shift+V"},
                                         BesideControl{"xterm", {"xterm", "XTerm"}, "Shift+Insert"}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(PasteChords, whenControlIsHeldInAPlainTerminal_theUsersOwnChordHolds) {
    MemoryUserDefaults defaults;
    defaults.set("platform.pasteChords", PropertyValue{{"XTerm", "Shift+F5"}});
    RecordingLog log;
    PasteChords chords(defaults, log);
    EXPECT_EQ(chords.chordBesideControl({"xterm"}), PasteChord::parse("Shift+F5"));
}

} // namespace
