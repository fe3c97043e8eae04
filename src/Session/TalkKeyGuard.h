// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Keyboard.h"
#include "Platform/MainQueue.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace tovik {

/// Turns what happens on the keyboard into flags-changed events, so that a talk key that is also a modifier
/// keeps its old work: its press is told only after a guard time in which no other key joins it. Shift does
/// not end the guard time, since both hands-free mode and a shortcut such as Control+Shift+C begin with it;
/// everything held back is told in the order in which it happened. Main thread.
class TalkKeyGuard {
public:
    struct Surroundings {
        /// False while this program is in front: what is pressed then is not told. Only the release of a
        /// talk key whose press was told always is, since a recording may depend on it.
        std::function<bool()> keysAreForOthers;

        /// Hands over, before it returns, all key events that the desktop already holds for us. Called
        /// before a guard time is taken to have passed in silence.
        std::function<void()> catchUp;
    };

    TalkKeyGuard(MainQueue& queue, Surroundings surroundings);

    void setHandlers(KeyMonitor::Handlers handlers);

    /// The talk key went down, so long ago. Without a guard time the press is told at once.
    void talkKeyPressed(Seconds guardTime, Seconds ago = Seconds::zero());
    void talkKeyReleased();
    /// Whether either Shift is held now; the same answer twice counts once.
    void setShiftHeld(bool held);
    /// Any other key went down.
    void otherKeyPressed();

    /// Whether the key is physically held, told or not.
    [[nodiscard]] bool isTalkKeyHeld() const { return talkKey_ != TalkKey::up; }

private:
    enum class TalkKey {
        up,
        guarded, ///< held, and it is open whether it will be told
        told,
        masked ///< held, but it belongs to a shortcut or to this program's own windows
    };

    [[nodiscard]] std::uint64_t flags() const;
    void tell(const FlagsChangedEvent& event);
    void guardTimePassed();
    void settle();
    void dismiss();

    MainQueue& queue_;
    Surroundings surroundings_;
    KeyMonitor::Handlers handlers_;
    TalkKey talkKey_ = TalkKey::up;
    unsigned presses_ = 0;
    bool shiftHeld_ = false;
    std::vector<FlagsChangedEvent> heldBack_;
    Subscription guardTimer_;
};

} // namespace tovik
