// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Keyboard.h"

#include <functional>
#include <utility>
#include <vector>

namespace tovik::test {

/// Keeps the key events that were made and posted.
class FakeKeyEventPoster : public KeyEventPoster {
public:
    struct Made {
        EventSourceState source;
        std::uint16_t keyCode;
        bool keyDown;

        bool operator==(const Made&) const = default;
    };
    struct Posted {
        KeyEvent event;
        EventTap tap;

        bool operator==(const Posted&) const = default;
    };

    [[nodiscard]] std::optional<KeyEvent> makeEvent(EventSourceState source, std::uint16_t keyCode,
                                                    bool keyDown) override {
        made.push_back({source, keyCode, keyDown});
        if (keyDown ? !canMakeKeyDown : !canMakeKeyUp) {
            return std::nullopt;
        }
        return KeyEvent{source, keyCode, keyDown, 0};
    }

    void post(const KeyEvent& event, EventTap tap) override {
        posted.push_back({event, tap});
        if (onPost) {
            onPost(posted.back());
        }
    }

    [[nodiscard]] bool isPosting() const override { return waitsForTheUser; }

    /// What is posted from now on waits, as for keys that the user still holds.
    bool waitsForTheUser = false;
    void userLetsGo() {
        waitsForTheUser = false;
        pressed.tell();
    }

    /// False: the session does not let the program press, or release, keys.
    bool canMakeKeyDown = true;
    bool canMakeKeyUp = true;

    std::vector<Made> made;
    std::vector<Posted> posted;

    /// Called after each posted event, for tests that look at the order of things.
    std::function<void(const Posted&)> onPost;
};

} // namespace tovik::test
