// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/TalkKeyGuard.h"

#include <utility>

namespace tovik {

TalkKeyGuard::TalkKeyGuard(MainQueue& queue, Surroundings surroundings)
    : queue_(queue),
      surroundings_(std::move(surroundings)) {}

void TalkKeyGuard::setHandlers(KeyMonitor::Handlers handlers) {
    handlers_ = std::move(handlers);
}

void TalkKeyGuard::talkKeyPressed(Seconds guardTime, Seconds ago) {
    if (isTalkKeyHeld()) {
        return;
    }
    if (!surroundings_.keysAreForOthers()) {
        talkKey_ = TalkKey::masked;
        return;
    }
    ++presses_;
    talkKey_ = TalkKey::guarded;
    heldBack_ = {{flags(), kFunctionKeyCode}};
    // The timer stands before the callback runs: what the callback does may itself bring key events.
    if (guardTime > Seconds::zero()) {
        guardTimer_ = queue_.after(guardTime, [this] { guardTimePassed(); });
    }
    if (handlers_.talkKeyTouched) {
        handlers_.talkKeyTouched(ago);
    }
    if (guardTime <= Seconds::zero()) {
        settle();
    }
}

void TalkKeyGuard::talkKeyReleased() {
    settle();
    const bool wasTold = talkKey_ == TalkKey::told;
    talkKey_ = TalkKey::up;
    if (wasTold && handlers_.flagsChanged) {
        handlers_.flagsChanged({flags(), kFunctionKeyCode});
    }
}

void TalkKeyGuard::setShiftHeld(bool held) {
    if (held == shiftHeld_) {
        return;
    }
    shiftHeld_ = held;
    const FlagsChangedEvent event{flags(), kShiftKeyCode};
    if (talkKey_ == TalkKey::guarded) {
        heldBack_.push_back(event);
    } else {
        tell(event);
    }
}

void TalkKeyGuard::otherKeyPressed() {
    if (talkKey_ == TalkKey::guarded) {
        dismiss();
    }
}

std::uint64_t TalkKeyGuard::flags() const {
    const bool function = talkKey_ == TalkKey::guarded || talkKey_ == TalkKey::told;
    return (function ? kFunctionFlag : 0) | (shiftHeld_ ? kShiftFlag : 0);
}

void TalkKeyGuard::tell(const FlagsChangedEvent& event) {
    if (handlers_.flagsChanged && surroundings_.keysAreForOthers()) {
        handlers_.flagsChanged(event);
    }
}

void TalkKeyGuard::guardTimePassed() {
    // A main thread that was busy sees the timer before the keys that were pressed in time.
    const auto press = presses_;
    if (surroundings_.catchUp) {
        surroundings_.catchUp();
    }
    if (press == presses_) {
        settle();
    }
}

void TalkKeyGuard::settle() {
    if (talkKey_ != TalkKey::guarded) {
        return;
    }
    if (!surroundings_.keysAreForOthers()) {
        dismiss();
        return;
    }
    guardTimer_.end();
    talkKey_ = TalkKey::told;
    // Moved out first: the handlers may bring key events of their own.
    for (const auto& event : std::exchange(heldBack_, {})) {
        if (handlers_.flagsChanged) {
            handlers_.flagsChanged(event);
        }
    }
}

void TalkKeyGuard::dismiss() {
    guardTimer_.end();
    heldBack_.clear();
    talkKey_ = TalkKey::masked;
    if (handlers_.talkKeyDismissed) {
        handlers_.talkKeyDismissed();
    }
}

} // namespace tovik
