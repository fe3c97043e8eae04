// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/X11/PasteChord.h"

#include <set>
#include <string>
#include <vector>

namespace tovik {

class SystemLog;
class UserDefaults;

/// Which chord pastes into which application: Shift+Insert, unless the user default "platform.pasteChords",
/// a map from application id to chord, says otherwise. Main thread.
class PasteChords {
public:
    /// Both outlive this object.
    PasteChords(const UserDefaults& defaults, SystemLog& log);

    /// An application may go by several ids; the first that the table knows decides. Ids are compared
    /// without regard to the case of ASCII letters. An entry that is no chord is logged once and the default
    /// chord holds.
    [[nodiscard]] PasteChord chordFor(const std::vector<std::string>& applicationIds);

    /// What pastes while the user holds Control down, as those do whose talk key it is: Ctrl+V, which
    /// terminals take for something else, so Ctrl+Shift+V there, and the usual chord in those that know
    /// neither.
    [[nodiscard]] PasteChord chordBesideControl(const std::vector<std::string>& applicationIds);

    static const PasteChord& defaultChord();

private:
    const UserDefaults& defaults_;
    SystemLog& log_;
    std::set<std::string> reported_;
};

} // namespace tovik
