// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Observers.h"

#include <cstdint>
#include <optional>

namespace tovik {

/// The state that a synthetic key event starts from.
enum class EventSourceState { combinedSession = 0, hidSystem = 1 };

/// The place at which a synthetic key event enters the session.
enum class EventTap { hid = 0, annotatedSession = 2 };

struct KeyEvent {
    EventSourceState source = EventSourceState::combinedSession;
    std::uint16_t keyCode = 0;
    bool keyDown = false;
    std::uint64_t flags = 0;

    bool operator==(const KeyEvent&) const = default;
};

/// Presses keys on the user's behalf, for whatever window has the keyboard. Main thread.
class KeyEventPoster {
public:
    virtual ~KeyEventPoster() = default;

    /// Nothing when this session does not let a program press keys.
    [[nodiscard]] virtual std::optional<KeyEvent> makeEvent(EventSourceState source, std::uint16_t keyCode,
                                                            bool keyDown) = 0;

    /// Returns without waiting for the key to arrive.
    virtual void post(const KeyEvent& event, EventTap tap) = 0;

    /// Whether something that was posted has not been pressed yet.
    [[nodiscard]] virtual bool isPosting() const = 0;
    /// Told each time that isPosting() has become false.
    Observers<> pressed;
};

} // namespace tovik
