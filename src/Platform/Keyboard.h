// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/Result.h"
#include "Platform/Subscription.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace tovik {

/// Modifier flags of a key event.
inline constexpr std::uint64_t kFunctionFlag = 0x800000;
inline constexpr std::uint64_t kShiftFlag = 0x20000;
inline constexpr std::uint64_t kCommandFlag = 0x100000;

/// Key codes, independent of the keyboard layout.
inline constexpr std::uint16_t kFunctionKeyCode = 63;
inline constexpr std::uint16_t kShiftKeyCode = 56;
inline constexpr std::uint16_t kVKeyCode = 9;

/// A modifier key went down or up: which modifiers are held now, and which key changed.
struct FlagsChangedEvent {
    std::uint64_t modifierFlags = 0;
    std::uint16_t keyCode = 0;

    bool operator==(const FlagsChangedEvent&) const = default;
};

/// Watches the talk key and Shift while another program is active. The keyboard is only observed: every key
/// still reaches the program it was meant for. Main thread throughout.
class KeyMonitor {
public:
    struct Handlers {
        /// The talk key counts as the Fn key, either Shift as Shift.
        std::function<void(const FlagsChangedEvent&)> flagsChanged;

        /// The talk key went down, perhaps as the beginning of another shortcut: flagsChanged follows later,
        /// or talkKeyDismissed does. The moment at which the user may begin to speak, and how long ago that
        /// was: the main thread may have been busy.
        std::function<void(Seconds ago)> talkKeyTouched;

        /// The talk key turned out to belong to another shortcut; no flagsChanged will come of it.
        std::function<void()> talkKeyDismissed;
    };

    virtual ~KeyMonitor() = default;

    /// Begins to watch, for as long as the monitor lives. Fails with a sentence for the user when this
    /// desktop session does not let a program see keys.
    virtual Result<void> start(Handlers handlers) = 0;
};

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

    /// Returns without waiting for the key to arrive. A paste brings the text that the clipboard holds now,
    /// whatever it holds when the key is pressed.
    virtual void post(const KeyEvent& event, EventTap tap) = 0;

    /// Whether something that was posted has not reached its window yet.
    [[nodiscard]] virtual bool isPosting() const = 0;
    /// Told each time that isPosting() has become false.
    Observers<> pressed;
    /// Told when something that was posted could not be pressed for long, or had no effect, and is given up;
    /// and whether its text is on the clipboard all the same.
    Observers<bool> givenUp;
};

} // namespace tovik
