// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// What every key event poster of the program does: that of the X server, and the one of the tests.
#include "Linux/Desktop/QtMainQueue.h"
#include "Linux/X11/PostedKeys.h"
#include "Linux/X11/X11KeyEventPoster.h"
#include "Linux/X11/X11Pasteboard.h"
#include "Platform/Keyboard.h"
#include "support/EventLoop.h"
#include "support/FakeKeyEventPoster.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"
#include "support/WindowProgram.h"
#include "support/XUser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace {

using namespace tovik;
using namespace tovik::test;

/// A poster, and the window that has the keyboard.
class World {
public:
    virtual ~World() = default;
    virtual KeyEventPoster& poster() = 0;
    /// How often the window was told to paste, once all that was posted has arrived.
    virtual int pastes() = 0;
};

class FakeWorld : public World {
public:
    KeyEventPoster& poster() override { return poster_; }
    int pastes() override {
        return static_cast<int>(std::count_if(
            poster_.posted.begin(), poster_.posted.end(), [](const FakeKeyEventPoster::Posted& posted) {
                return posted.event.keyDown && posted.event.keyCode == kVKeyCode &&
                       posted.event.flags == kCommandFlag;
            }));
    }

private:
    FakeKeyEventPoster poster_;
};

class XWorld : public World {
public:
    XWorld() {
        user_.setDesktopCount(1); // the window manager listens
        program_ = std::make_unique<WindowProgram>("editor");
        EXPECT_TRUE(runUntil([this] {
            user_.tap("F5");
            return !program_->keys().empty();
        })) << "the window never got the keyboard";
        (void)pastes();
    }
    ~XWorld() override {
        user_.letGo();
        EXPECT_TRUE(user_.heldKeys().none()) << "a key is stuck";
    }

    KeyEventPoster& poster() override { return poster_; }
    int pastes() override {
        // What the window gets last shows that it has got all.
        user_.tap("F6");
        const auto has = [this](const char* key) {
            return std::count(program_->keys().begin(), program_->keys().end(), key);
        };
        EXPECT_TRUE(runUntil([&] { return has("release F6 0x0") > 0; }));
        const auto pastes = has("press Insert 0x1");
        program_->forgetKeys();
        return static_cast<int>(pastes);
    }

private:
    QtMainQueue queue_;
    MemoryUserDefaults defaults_;
    RecordingLog log_;
    PostedKeys posted_;
    XUser user_;
    std::unique_ptr<WindowProgram> program_;
    X11Pasteboard pasteboard_{log_};
    X11KeyEventPoster poster_{{queue_, defaults_, log_, posted_, pasteboard_}};
};

using MakeWorld = std::unique_ptr<World> (*)();

class KeyEventPosterContract : public testing::TestWithParam<MakeWorld> {
protected:
    KeyEventPoster& poster() { return world_->poster(); }

    std::unique_ptr<World> world_ = GetParam()();
};

TEST_P(KeyEventPosterContract, whenAnEventIsMade_isWhatWasAskedForWithoutFlags) {
    const auto down = poster().makeEvent(EventSourceState::hidSystem, kVKeyCode, true);
    const auto up = poster().makeEvent(EventSourceState::combinedSession, kVKeyCode, false);
    EXPECT_EQ(down, (KeyEvent{EventSourceState::hidSystem, kVKeyCode, true, 0}));
    EXPECT_EQ(up, (KeyEvent{EventSourceState::combinedSession, kVKeyCode, false, 0}));
    EXPECT_EQ(world_->pastes(), 0);
}

TEST_P(KeyEventPosterContract, whenCommandVGoesDownAndUp_pastesOnce) {
    auto down = poster().makeEvent(EventSourceState::hidSystem, kVKeyCode, true);
    auto up = poster().makeEvent(EventSourceState::hidSystem, kVKeyCode, false);
    ASSERT_TRUE(down && up);
    down->flags = kCommandFlag;
    up->flags = kCommandFlag;
    poster().post(*down, EventTap::hid);
    poster().post(*up, EventTap::hid);
    EXPECT_EQ(world_->pastes(), 1);
}

TEST_P(KeyEventPosterContract, whenTheOtherTapAndSourceAreUsed_pastesAsWell) {
    poster().post({EventSourceState::combinedSession, kVKeyCode, true, kCommandFlag},
                  EventTap::annotatedSession);
    poster().post({EventSourceState::combinedSession, kVKeyCode, false, kCommandFlag},
                  EventTap::annotatedSession);
    EXPECT_EQ(world_->pastes(), 1);
}

TEST_P(KeyEventPosterContract, whenPostedTwice_pastesTwice) {
    for (int time = 0; time < 2; ++time) {
        poster().post({EventSourceState::hidSystem, kVKeyCode, true, kCommandFlag}, EventTap::hid);
        poster().post({EventSourceState::hidSystem, kVKeyCode, false, kCommandFlag}, EventTap::hid);
    }
    EXPECT_EQ(world_->pastes(), 2);
}

TEST_P(KeyEventPosterContract, whenVGoesDownWithoutCommand_doesNotPaste) {
    poster().post({EventSourceState::hidSystem, kVKeyCode, true, 0}, EventTap::hid);
    poster().post({EventSourceState::hidSystem, kVKeyCode, false, 0}, EventTap::hid);
    EXPECT_EQ(world_->pastes(), 0);
}

INSTANTIATE_TEST_SUITE_P(Fake, KeyEventPosterContract,
                         testing::Values(MakeWorld([]() -> std::unique_ptr<World> {
                             return std::make_unique<FakeWorld>();
                         })));
INSTANTIATE_TEST_SUITE_P(X11, KeyEventPosterContract,
                         testing::Values(MakeWorld([]() -> std::unique_ptr<World> {
                             return std::make_unique<XWorld>();
                         })));

} // namespace
