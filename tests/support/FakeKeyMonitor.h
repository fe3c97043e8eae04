// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Keyboard.h"

#include <functional>
#include <optional>
#include <utility>

namespace tovik::test {

/// A keyboard that the test presses: the talk key and Shift, as a program sees them while another one is
/// active.
class FakeKeyMonitor : public KeyMonitor {
public:
    Result<void> start(Handlers handlers) override {
        ++startCount;
        if (onStart) {
            onStart();
        }
        if (failure) {
            return *failure;
        }
        handlers_ = std::move(handlers);
        return {};
    }

    /// The talk key goes down and counts at once, as a key without a guard does.
    void pressTalkKey() {
        touchTalkKey();
        confirmTalkKey();
    }

    /// The talk key goes down; whether it counts is still open.
    void touchTalkKey() {
        if (handlers_.talkKeyTouched) {
            handlers_.talkKeyTouched(Seconds::zero());
        }
    }

    /// The guard time of a touched talk key ran out: it counts.
    void confirmTalkKey() {
        held_ |= kFunctionFlag;
        send(kFunctionKeyCode);
    }

    /// The touched talk key turned out to be part of another shortcut.
    void dismissTalkKey() {
        if (handlers_.talkKeyDismissed) {
            handlers_.talkKeyDismissed();
        }
    }

    void releaseTalkKey() {
        held_ &= ~kFunctionFlag;
        send(kFunctionKeyCode);
    }

    void pressShift() {
        held_ |= kShiftFlag;
        send(kShiftKeyCode);
    }

    void releaseShift() {
        held_ &= ~kShiftFlag;
        send(kShiftKeyCode);
    }

    /// Any event at all; what is held otherwise does not matter to it and does not change.
    void send(const FlagsChangedEvent& event) {
        if (handlers_.flagsChanged) {
            handlers_.flagsChanged(event);
        }
    }

    /// What start() answers instead of success, when set.
    std::optional<Error> failure;
    int startCount = 0;
    std::function<void()> onStart;

private:
    void send(std::uint16_t keyCode) { send(FlagsChangedEvent{held_, keyCode}); }

    Handlers handlers_;
    std::uint64_t held_ = 0;
};

} // namespace tovik::test
