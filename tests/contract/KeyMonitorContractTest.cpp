// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// What every key monitor of the program does: that of the X server, and the one of the tests.
#include "Linux/X11/PostedKeys.h"
#include "Linux/X11/X11KeyMonitor.h"
#include "support/EventLoop.h"
#include "support/FakeKeyMonitor.h"
#include "support/ManualTime.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"
#include "support/XUser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

using namespace tovik;
using namespace tovik::test;
using testing::ElementsAre;
using testing::IsEmpty;

/// A monitor and the keyboard it watches. Each deed returns when the monitor has told what follows of it.
class World {
public:
    virtual ~World() = default;
    virtual KeyMonitor& monitor() = 0;
    virtual void pressTalkKey() = 0;
    virtual void releaseTalkKey() = 0;
    virtual void pressShift() = 0;
    virtual void releaseShift() = 0;
    /// A key with which the talk key is a shortcut goes down and up.
    virtual void tapOtherKey() = 0;
    /// The time after which a held talk key counts.
    virtual void waitForGuard() = 0;
};

class FakeWorld : public World {
public:
    KeyMonitor& monitor() override { return monitor_; }
    void pressTalkKey() override {
        monitor_.touchTalkKey();
        state_ = State::touched;
    }
    void releaseTalkKey() override {
        waitForGuard();
        if (state_ == State::told) {
            monitor_.releaseTalkKey();
        }
        state_ = State::up;
    }
    void pressShift() override { monitor_.pressShift(); }
    void releaseShift() override { monitor_.releaseShift(); }
    void tapOtherKey() override {
        if (state_ == State::touched) {
            monitor_.dismissTalkKey();
            state_ = State::dismissed;
        }
    }
    void waitForGuard() override {
        if (state_ == State::touched) {
            monitor_.confirmTalkKey();
            state_ = State::told;
        }
    }

private:
    enum class State { up, touched, told, dismissed };

    FakeKeyMonitor monitor_;
    State state_ = State::up;
};

class XWorld : public World {
public:
    ~XWorld() override {
        user_.letGo();
        EXPECT_TRUE(user_.heldKeys().none()) << "a key is stuck";
    }

    KeyMonitor& monitor() override { return monitor_; }
    void pressTalkKey() override { press("Control_R"); }
    void releaseTalkKey() override { release("Control_R"); }
    void pressShift() override { press("Shift_L"); }
    void releaseShift() override { release("Shift_L"); }
    void tapOtherKey() override {
        press("c");
        release("c");
    }
    void waitForGuard() override { time_.advance(Seconds(0.15)); }

private:
    void press(const std::string& key) {
        user_.press(key);
        runPendingEvents();
    }
    void release(const std::string& key) {
        user_.release(key);
        runPendingEvents();
    }

    ManualTime time_;
    MemoryUserDefaults defaults_;
    RecordingLog log_;
    PostedKeys posted_;
    XUser user_;
    X11KeyMonitor monitor_{{time_, defaults_, log_, posted_, [] { return false; }}};
};

using MakeWorld = std::unique_ptr<World> (*)();

class KeyMonitorContract : public testing::TestWithParam<MakeWorld> {
protected:
    void SetUp() override {
        world_ = GetParam()();
        const auto started = world_->monitor().start(
            {.flagsChanged =
                 [this](const FlagsChangedEvent& event) {
                     told_.push_back((event.keyCode == kFunctionKeyCode ? "talk key:" : "shift:") +
                                     nameOf(event.modifierFlags));
                 },
             .talkKeyTouched = [this](Seconds) { told_.emplace_back("touched"); },
             .talkKeyDismissed = [this] { told_.emplace_back("dismissed"); }});
        ASSERT_TRUE(started) << started.error().description;
    }

    static std::string nameOf(std::uint64_t flags) {
        return std::string((flags & kFunctionFlag) != 0 ? " Fn" : "") +
               ((flags & kShiftFlag) != 0 ? " Shift" : "") + (flags == 0 ? " none" : "");
    }

    std::unique_ptr<World> world_;
    std::vector<std::string> told_;
};

TEST_P(KeyMonitorContract, whenNothingHappens_tellsNothing) {
    world_->waitForGuard();
    EXPECT_THAT(told_, IsEmpty());
}

TEST_P(KeyMonitorContract, whenTheTalkKeyGoesDown_isTouchedAtOnceAndTellsLater) {
    world_->pressTalkKey();
    EXPECT_THAT(told_, ElementsAre("touched"));
    world_->waitForGuard();
    EXPECT_THAT(told_, ElementsAre("touched", "talk key: Fn"));
}

TEST_P(KeyMonitorContract, whenTheTalkKeyIsHeldAndReleased_tellsDownAndUp) {
    world_->pressTalkKey();
    world_->waitForGuard();
    world_->releaseTalkKey();
    EXPECT_THAT(told_, ElementsAre("touched", "talk key: Fn", "talk key: none"));
}

TEST_P(KeyMonitorContract, whenTheTalkKeyIsTapped_tellsDownAndUp) {
    world_->pressTalkKey();
    world_->releaseTalkKey();
    EXPECT_THAT(told_, ElementsAre("touched", "talk key: Fn", "talk key: none"));
}

TEST_P(KeyMonitorContract, whenAnotherKeyJoinsTheTalkKey_dismissesIt) {
    world_->pressTalkKey();
    world_->tapOtherKey();
    world_->waitForGuard();
    world_->releaseTalkKey();
    EXPECT_THAT(told_, ElementsAre("touched", "dismissed"));
}

TEST_P(KeyMonitorContract, whenATalkKeyWasDismissed_theNextPressCounts) {
    world_->pressTalkKey();
    world_->tapOtherKey();
    world_->releaseTalkKey();
    told_.clear();
    world_->pressTalkKey();
    world_->waitForGuard();
    EXPECT_THAT(told_, ElementsAre("touched", "talk key: Fn"));
}

TEST_P(KeyMonitorContract, whenAnotherKeyIsTappedDuringATalk_tellsNothing) {
    world_->pressTalkKey();
    world_->waitForGuard();
    told_.clear();
    world_->tapOtherKey();
    EXPECT_THAT(told_, IsEmpty());
}

TEST_P(KeyMonitorContract, whenAnotherKeyIsTappedAlone_tellsNothing) {
    world_->tapOtherKey();
    EXPECT_THAT(told_, IsEmpty());
}

TEST_P(KeyMonitorContract, whenShiftJoinsTheTalkKey_tellsBoth) {
    world_->pressTalkKey();
    world_->waitForGuard();
    world_->pressShift();
    world_->releaseShift();
    world_->releaseTalkKey();
    EXPECT_THAT(told_,
                ElementsAre("touched", "talk key: Fn", "shift: Fn Shift", "shift: Fn", "talk key: none"));
}

TEST_P(KeyMonitorContract, whenShiftIsHeldFirst_theTalkKeyCarriesBoth) {
    world_->pressShift();
    world_->pressTalkKey();
    world_->waitForGuard();
    EXPECT_THAT(told_, ElementsAre("shift: Shift", "touched", "talk key: Fn Shift"));
}

TEST_P(KeyMonitorContract, whenTheTalkKeyGoesFirst_shiftIsStillHeld) {
    world_->pressTalkKey();
    world_->waitForGuard();
    world_->pressShift();
    told_.clear();
    world_->releaseTalkKey();
    world_->releaseShift();
    EXPECT_THAT(told_, ElementsAre("talk key: Shift", "shift: none"));
}

INSTANTIATE_TEST_SUITE_P(Fake, KeyMonitorContract, testing::Values(MakeWorld([]() -> std::unique_ptr<World> {
                             return std::make_unique<FakeWorld>();
                         })));
INSTANTIATE_TEST_SUITE_P(X11, KeyMonitorContract, testing::Values(MakeWorld([]() -> std::unique_ptr<World> {
                             return std::make_unique<XWorld>();
                         })));

} // namespace
