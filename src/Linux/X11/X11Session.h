// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"

#include <string>

namespace tovik {

class X11Connection;

/// What an X session lets a program do with its keys.
struct X11Session {
    /// Every key press of the session can be observed (XInput 2.2).
    bool canSeeKeys = false;
    /// Keys can be pressed on the user's behalf (XTest).
    bool canPressKeys = false;
    /// The session is shown by a Wayland compositor: keys are seen, and pressed, only while a program that
    /// uses X has the keyboard.
    bool underWayland = false;
    /// For the user: what cannot work here and why; empty when all works.
    std::string sentence;

    /// Whether dictation can work at all: the talk key is seen and the text can be pasted.
    [[nodiscard]] bool usable() const { return canSeeKeys && canPressKeys; }

    bool operator==(const X11Session&) const = default;

    /// Looks at a display; an empty name means the session's own. Always answers: without a display nothing
    /// works, and the sentence says so.
    static X11Session examine(const std::string& displayName = {});
    static X11Session examine(X11Connection& connection);

    static Error noDisplayError();
};

} // namespace tovik
