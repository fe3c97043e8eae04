// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/X11/PasteChords.h"
#include "Platform/Keyboard.h"
#include "Platform/MainQueue.h"

#include <functional>
#include <memory>
#include <string>

namespace tovik {

class PasteChords;
class PostedKeys;
class SystemLog;
class UserDefaults;
class X11Connection;
class X11KeyPresser;
class X11Windows;

/// Pastes on behalf of the user: Command+V is all that it can press, and it presses whatever chord pastes
/// into the window that has the keyboard. The whole chord is sent at the key-down event. While another window
/// than that of the dictation is in front, or the user holds a modifier that would spoil the chord, it waits,
/// up to 2 s, without holding up the main thread. Then it presses what pastes with Control held, where that
/// is what is held, and the chord all the same otherwise.
class X11KeyEventPoster : public KeyEventPoster {
public:
    struct Services {
        MainQueue& queue;
        const UserDefaults& defaults;
        SystemLog& log;
        /// Told of every key before it is pressed.
        PostedKeys& posted;
        /// Whether the window that was last brought to the front for a paste is there; without it, none was.
        std::function<bool()> isTargetInFront = nullptr;
        /// Brings it there once more.
        std::function<void()> bringTargetToFront = nullptr;
    };

    /// All services outlive the poster. An empty display name means the session's display.
    explicit X11KeyEventPoster(Services services, const std::string& displayName = {});
    ~X11KeyEventPoster() override;

    [[nodiscard]] std::optional<KeyEvent> makeEvent(EventSourceState source, std::uint16_t keyCode,
                                                    bool keyDown) override;
    void post(const KeyEvent& event, EventTap tap) override;
    [[nodiscard]] bool isPosting() const override { return waiting_ > 0; }

private:
    void pasteWhenPossible();
    [[nodiscard]] bool pasteIfPossible();
    void pasteAllTheSame();
    void paste(const PasteChord& chord);
    [[nodiscard]] PasteChord chord();
    [[nodiscard]] PasteChord chordForHeldKeys();

    Services services_;
    std::unique_ptr<X11Connection> connection_;
    std::unique_ptr<X11Windows> windows_;
    std::unique_ptr<PasteChords> chords_;
    std::unique_ptr<X11KeyPresser> presser_;
    /// Chords that wait for the user to let go of modifiers.
    int waiting_ = 0;
    bool hasTarget_ = false;
    int checksInVain_ = 0;
    Subscription check_;
    Subscription deadline_;
};

} // namespace tovik
