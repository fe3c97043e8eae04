// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/X11/PasteChord.h"
#include "Linux/X11/PostedKeys.h"
#include "Linux/X11/X11Keyboard.h"
#include "Platform/Result.h"

#include <optional>
#include <vector>

namespace tovik {

class X11Connection;

/// Presses key chords through XTest, whatever the keyboard layout. Main thread.
class X11KeyPresser {
public:
    /// Both outlive this object.
    X11KeyPresser(X11Connection& connection, PostedKeys& posted);
    X11KeyPresser(const X11KeyPresser&) = delete;
    X11KeyPresser& operator=(const X11KeyPresser&) = delete;
    /// Gives back the keys that were borrowed.
    ~X11KeyPresser();

    /// Whether the user holds a modifier that would make another chord of this one.
    [[nodiscard]] bool isSpoiled(const PasteChord& chord) const;

    /// Presses the chord and releases it, all in one message to the server, so that no key can stay down.
    /// Where the layout lacks the key, an unused one is given its meaning until this object goes.
    Result<void> press(const PasteChord& chord);

private:
    using Keys = std::vector<X11Keyboard::Key>;
    struct BorrowedKey {
        unsigned keyCode;
        unsigned long keysym;
    };

    [[nodiscard]] Keys layout() const;
    [[nodiscard]] std::optional<unsigned> keyCodeOf(const Keys& keys, unsigned long keysym) const;
    std::optional<unsigned> borrow(const Keys& keys, unsigned long keysym);
    void giveBack(const BorrowedKey& key);
    void send(const std::vector<PostedKeys::Stroke>& strokes);

    X11Connection& connection_;
    PostedKeys& posted_;
    X11Keyboard keyboard_;
    std::vector<BorrowedKey> borrowed_;
};

} // namespace tovik
