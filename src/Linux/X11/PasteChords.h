// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

class SystemLog;
class UserDefaults;

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
    /// neither. Nothing where none of them is known to paste, or where the user has named a chord.
    [[nodiscard]] std::optional<PasteChord>
    chordBesideControl(const std::vector<std::string>& applicationIds);

    /// Whether Shift+Insert pastes from the primary selection there: in terminals, in GVim, and in the
    /// applications whose ids the user default "platform.primaryPasters" lists.
    [[nodiscard]] bool pastesFromPrimary(const std::vector<std::string>& applicationIds) const;

    static const PasteChord& defaultChord();

private:
    [[nodiscard]] std::optional<PasteChord> usersChord(const std::vector<std::string>& applicationIds);

    const UserDefaults& defaults_;
    SystemLog& log_;
    std::set<std::string> reported_;
};

} // namespace tovik
