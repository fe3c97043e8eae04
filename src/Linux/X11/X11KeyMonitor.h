// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/X11/X11Connection.h"
#include "Linux/X11/X11Keyboard.h"
#include "Platform/Keyboard.h"
#include "Platform/MainQueue.h"
#include "Platform/Subscription.h"

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace tovik {

class PostedKeys;
class SystemLog;
class TalkKeyGuard;
class TalkKeySetting;
class UserDefaults;
class X11Connection;
class X11EventWatch;

/// Sees the keyboard through the X server's raw events, which come whichever window has the keyboard, also
/// while another program has grabbed it. Which keys count is told by TalkKeySetting; either Shift is Shift.
class X11KeyMonitor : public KeyMonitor {
public:
    struct Services {
        MainQueue& queue;
        const UserDefaults& defaults;
        SystemLog& log;
        /// Where the poster announces what it presses.
        PostedKeys& posted;
        /// True while this program is in front: keys pressed then are not reported.
        std::function<bool()> ownProgramIsFrontmost;
    };

    /// All services outlive the monitor. An empty display name means the session's display.
    explicit X11KeyMonitor(Services services, std::string displayName = {});
    ~X11KeyMonitor() override;

    Result<void> start(Handlers handlers) override;

    /// Whether the user holds the talk key at this moment, and no other key.
    [[nodiscard]] bool isTalkKeyHeldAlone();

private:
    /// One physical key: keyboards of different masters use the same codes.
    using PhysicalKey = std::pair<int, unsigned>;

    void handle(_XEvent& event);
    void keyPressed(const PhysicalKey& key, int device, unsigned long time);
    void keyReleased(const PhysicalKey& key);
    void talkKeyPressed(const PhysicalKey& key, unsigned long keysym, unsigned long time);
    [[nodiscard]] Seconds since(unsigned long time);
    void talkKeyReleased();
    void settleRelease();
    void devicesChanged();
    void forgetMissedReleases();
    void findHeldShiftKeys();
    void warnOfMissingTalkKey();
    [[nodiscard]] bool isHeld(const PhysicalKey& key);

    Services services_;
    std::string displayName_;
    std::unique_ptr<TalkKeySetting> setting_;
    std::unique_ptr<TalkKeyGuard> guard_;
    std::unique_ptr<X11Connection> queries_;
    std::unique_ptr<X11Connection> events_;
    std::unique_ptr<X11Keyboard> keyboard_;
    std::unique_ptr<X11EventWatch> watch_;
    int inputOpcode_ = 0;
    std::optional<PhysicalKey> talkKey_;
    bool talkKeyRepeats_ = false;
    /// A release of it was told while the server held it for pressed.
    bool releasedUnseen_ = false;
    /// Runs while a release may turn out to be part of a repetition.
    Subscription doubtfulRelease_;
    std::set<PhysicalKey> shiftKeys_;
    Subscription releaseCheck_;
    Lifetime lifetime_;
};

} // namespace tovik
