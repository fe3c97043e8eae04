// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <bitset>
#include <optional>
#include <string>
#include <vector>

namespace tovik {

class X11Connection;

/// What the server knows of its keyboards at this moment; nothing is remembered, so changes of the layout
/// and keyboards plugged in later need no care. Key codes are the server's, keysyms those of its headers.
/// A device that is gone has no keys and holds none. Main thread.
class X11Keyboard {
public:
    using KeyStates = std::bitset<256>;

    /// A key of a layout.
    struct Key {
        unsigned keyCode = 0;
        /// The unshifted keysym in each of the key's groups.
        std::vector<unsigned long> keysyms;
        /// The core modifiers that the key sets.
        unsigned modifiers = 0;
    };

    /// The connection outlives this object and must not be watched for events.
    explicit X11Keyboard(X11Connection& connection);

    /// The unshifted keysyms of one key, one per group.
    [[nodiscard]] std::vector<unsigned long> keysyms(int device, unsigned keyCode) const;

    /// All keys that have a meaning, lowest key code first.
    [[nodiscard]] std::vector<Key> keys(int device) const;

    /// Keys held on any keyboard that belongs to this master.
    [[nodiscard]] KeyStates heldKeys(int masterKeyboard);
    /// After a change of the device hierarchy.
    void devicesChanged() { askedMaster_ = 0; }

    /// The modifiers held down on the core keyboard (core modifier bits, locks and latches left out), and
    /// the active group.
    struct State {
        unsigned heldModifiers = 0;
        unsigned group = 0;
    };
    [[nodiscard]] State state() const;

    [[nodiscard]] std::optional<std::string> deviceName(int device) const;
    /// The keyboard by which programs press keys.
    [[nodiscard]] bool isTestKeyboard(int device) const;
    /// That of the core keyboard; nothing when there is none.
    [[nodiscard]] std::optional<int> testKeyboard() const;

private:
    X11Connection& connection_;
    /// The master keyboard that the server speaks of when this connection asks for held keys.
    int askedMaster_ = 0;
};

} // namespace tovik
