// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// The key monitor on a real X server: what a keyboard does beyond going down and up.
#include "Linux/Desktop/QtMainQueue.h"
#include "Linux/X11/PostedKeys.h"
#include "Linux/X11/X11Connection.h"
#include "Linux/X11/X11KeyEventPoster.h"
#include "Linux/X11/X11KeyMonitor.h"
#include "Linux/X11/X11Pasteboard.h"
#include "support/EventLoop.h"
#include "support/ManualTime.h"
#include "support/MemoryUserDefaults.h"
#include "support/NestedServer.h"
#include "support/RecordingLog.h"
#include "support/WindowProgram.h"
#include "support/XUser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace {

using namespace tovik;
using namespace tovik::test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;

constexpr Seconds kGuardTime{0.15};
/// After so long a release is no part of a repetition.
constexpr Seconds kRepetition{0.025};

class X11KeyMonitorTest : public testing::Test {
protected:
    X11KeyMonitorTest() { user_.setLayout("us"); }
    ~X11KeyMonitorTest() override {
        user_.letGo();
        EXPECT_TRUE(user_.heldKeys().none()) << "a key is stuck";
    }

    void start() { start(time_, {}); }
    void start(MainQueue& queue, const std::string& display) {
        monitor_ = std::make_unique<X11KeyMonitor>(
            X11KeyMonitor::Services{queue, defaults_, log_, posted_, [this] { return ownProgramInFront_; }},
            display);
        const auto started = monitor_->start(
            {.flagsChanged = [this](const FlagsChangedEvent& event) { told_.push_back(nameOf(event)); },
             .talkKeyTouched =
                 [this](Seconds ago) {
                     told_.emplace_back("touched");
                     touchedAgo_ = ago;
                 },
             .talkKeyDismissed = [this] { told_.emplace_back("dismissed"); }});
        ASSERT_TRUE(started) << started.error().description;
    }

    static std::string nameOf(const FlagsChangedEvent& event) {
        return std::string(event.keyCode == kFunctionKeyCode ? "talk key:" : "shift:") +
               ((event.modifierFlags & kFunctionFlag) != 0 ? " Fn" : "") +
               ((event.modifierFlags & kShiftFlag) != 0 ? " Shift" : "") +
               (event.modifierFlags == 0 ? " none" : "");
    }

    void press(const std::string& key) {
        user_.press(key);
        runPendingEvents();
    }
    void release(const std::string& key) {
        user_.release(key);
        runPendingEvents();
    }
    void passGuardTime() { time_.advance(kGuardTime); }

    ManualTime time_;
    MemoryUserDefaults defaults_;
    RecordingLog log_;
    PostedKeys posted_;
    XUser user_;
    bool ownProgramInFront_ = false;
    std::vector<std::string> told_;
    Seconds touchedAgo_{-1};
    std::unique_ptr<NestedServer> nested_; // outlives its clients
    std::unique_ptr<X11KeyMonitor> monitor_;
};

TEST_F(X11KeyMonitorTest, whenRightControlAndCArePressed_theProgramCopiesAndNothingIsTold) {
    WindowProgram program("editor");
    user_.focus(program.window());
    start();
    press("Control_R");
    time_.advance(Seconds(0.05));
    press("c");
    release("c");
    time_.advance(Seconds(1));
    release("Control_R");
    EXPECT_THAT(told_, ElementsAre("touched", "dismissed"));
    EXPECT_TRUE(runUntil([&] { return program.keys().size() >= 4; }));
    EXPECT_THAT(program.keys(),
                ElementsAre("press Control_R 0x0", "press c 0x4", "release c 0x4", "release Control_R 0x4"));
}

TEST_F(X11KeyMonitorTest, whenControlShiftCIsPressed_theProgramGetsItAndNoDictationStarts) {
    start();
    press("Control_R");
    press("Shift_L");
    press("c");
    time_.advance(Seconds(1));
    release("c");
    release("Shift_L");
    release("Control_R");
    EXPECT_THAT(told_, ElementsAre("touched", "dismissed", "shift: none"));
}

TEST_F(X11KeyMonitorTest, whenLeftControlIsPressed_tellsNothing) {
    start();
    press("Control_L");
    time_.advance(Seconds(1));
    release("Control_L");
    EXPECT_THAT(told_, IsEmpty());
}

TEST_F(X11KeyMonitorTest, whenEitherShiftIsHeld_shiftIsHeldUntilBothAreUp) {
    start();
    press("Shift_L");
    press("Shift_R");
    release("Shift_L");
    EXPECT_THAT(told_, ElementsAre("shift: Shift"));
    release("Shift_R");
    EXPECT_THAT(told_, ElementsAre("shift: Shift", "shift: none"));
}

TEST_F(X11KeyMonitorTest, whenShiftIsHeldAlreadyAtTheStart_theTalkKeyCarriesIt) {
    user_.press("Shift_R");
    start();
    press("Control_R");
    passGuardTime();
    EXPECT_THAT(told_, ElementsAre("touched", "talk key: Fn Shift"));
}

TEST_F(X11KeyMonitorTest, whenTheTalkKeyIsHeldAlreadyAtTheStart_onlyTheNextPressCounts) {
    user_.press("Control_R");
    start();
    time_.advance(Seconds(1));
    release("Control_R");
    EXPECT_THAT(told_, IsEmpty());
    press("Control_R");
    EXPECT_THAT(told_, ElementsAre("touched"));
}

TEST_F(X11KeyMonitorTest, whenAnotherProgramHasGrabbedTheKeyboard_tellsAllTheSame) {
    start();
    ASSERT_TRUE(user_.grabKeyboard());
    press("Control_R");
    passGuardTime();
    release("Control_R");
    user_.ungrabKeyboard();
    EXPECT_THAT(told_, ElementsAre("touched", "talk key: Fn", "talk key: none"));
}

TEST_F(X11KeyMonitorTest, whenTheFocusMovesWhileTheTalkKeyIsHeld_tellsTheReleaseAllTheSame) {
    WindowProgram first("editor");
    WindowProgram second("terminal");
    user_.focus(first.window());
    start();
    press("Control_R");
    passGuardTime();
    user_.focus(second.window());
    first.close();
    runPendingEvents();
    time_.advance(Seconds(1));
    EXPECT_THAT(told_, ElementsAre("touched", "talk key: Fn"));
    release("Control_R");
    EXPECT_THAT(told_, ElementsAre("touched", "talk key: Fn", "talk key: none"));
}

TEST_F(X11KeyMonitorTest, whenOwnProgramIsInFront_tellsNothingOfWhatIsPressed) {
    start();
    ownProgramInFront_ = true;
    press("Shift_L");
    release("Shift_L");
    press("Control_R");
    time_.advance(Seconds(1));
    release("Control_R");
    EXPECT_THAT(told_, IsEmpty());
}

TEST_F(X11KeyMonitorTest, whenOwnProgramComesToTheFrontDuringATalk_tellsTheRelease) {
    start();
    press("Control_R");
    passGuardTime();
    ownProgramInFront_ = true;
    release("Control_R");
    EXPECT_THAT(told_, ElementsAre("touched", "talk key: Fn", "talk key: none"));
}

TEST_F(X11KeyMonitorTest, whenKeysWaitWhileTheProgramIsBusy_theGuardSeesThemFirst) {
    start();
    press("Control_R");
    // The event loop does not run: the key stays unread until the guard time has passed.
    user_.press("c");
    passGuardTime();
    EXPECT_THAT(told_, ElementsAre("touched", "dismissed"));
}

TEST_F(X11KeyMonitorTest, whenTheTalkKeyIsDownAgainBeforeABusyProgramLooks_bothPressesCount) {
    start();
    press("Control_R");
    passGuardTime();
    user_.release("Control_R");
    user_.press("Control_R");
    runPendingEvents();
    passGuardTime();
    release("Control_R");
    EXPECT_THAT(told_, ElementsAre("touched", "talk key: Fn", "talk key: none", "touched", "talk key: Fn",
                                   "talk key: none"));
}

TEST_F(X11KeyMonitorTest, whenTheTalkKeyFollowsAShortcutBeforeABusyProgramLooks_itTalks) {
    start();
    press("Control_R");
    press("c");
    user_.release("c");
    user_.release("Control_R");
    user_.press("Control_R");
    runPendingEvents();
    passGuardTime();
    release("Control_R");
    EXPECT_THAT(told_, ElementsAre("touched", "dismissed", "touched", "talk key: Fn", "talk key: none"));
}

TEST_F(X11KeyMonitorTest, whenTheLayoutIsReplaced_theTalkKeyIsWhereTheLayoutHasIt) {
    start();
    defaults_.set("platform.talkKey", "Print");
    user_.setLayout("us");
    const auto place = user_.keyCode("Print");
    user_.remap(place, "Menu");
    user_.remap(user_.keyCode("F9"), "Print");
    ASSERT_NE(user_.keyCode("Print"), place);
    user_.pressCode(place);
    user_.releaseCode(place);
    press("Print");
    release("Print");
    time_.advance(kRepetition);
    EXPECT_THAT(told_, ElementsAre("touched", "talk key: Fn", "talk key: none"));
}

struct LayoutRow {
    const char* name;
    const char* setting;
    unsigned group;
};

class X11KeyMonitorLayout : public X11KeyMonitorTest, public testing::WithParamInterface<LayoutRow> {};

TEST_P(X11KeyMonitorLayout, whenItIsInUse_rightControlTalksAndShiftLocks) {
    start();
    user_.setLayout(GetParam().setting);
    user_.switchToGroup(GetParam().group);
    press("Control_R");
    passGuardTime();
    press("Shift_L");
    release("Shift_L");
    release("Control_R");
    EXPECT_THAT(told_,
                ElementsAre("touched", "talk key: Fn", "shift: Fn Shift", "shift: Fn", "talk key: none"));
}

INSTANTIATE_TEST_SUITE_P(Rows, X11KeyMonitorLayout,
                         testing::Values(LayoutRow{"us", "us", 0}, LayoutRow{"de", "de", 0},
                                         LayoutRow{"ru", "ru", 0},
                                         LayoutRow{"dvorak", "us -variant dvorak", 0},
                                         LayoutRow{"secondGroup", "us,ru", 1}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(X11KeyMonitorTest, whenAnotherTalkKeyIsSet_onlyThatOneCountsAtOnce) {
    start();
    defaults_.set("platform.talkKey", "F9");
    press("Control_R");
    passGuardTime();
    release("Control_R");
    EXPECT_THAT(told_, IsEmpty());
    press("F9");
    EXPECT_THAT(told_, ElementsAre("touched", "talk key: Fn")); // no modifier, no guard
    press("c");
    release("c");
    release("F9");
    time_.advance(kRepetition);
    EXPECT_THAT(told_, ElementsAre("touched", "talk key: Fn", "talk key: none"));
}

TEST_F(X11KeyMonitorTest, whenShiftFollowsTheReleaseOfAKeyThatRepeats_theOrderIsKept) {
    defaults_.set("platform.talkKey", "F9");
    start();
    press("F9");
    release("F9");
    press("Shift_L");
    release("Shift_L");
    EXPECT_THAT(told_,
                ElementsAre("touched", "talk key: Fn", "talk key: none", "shift: Shift", "shift: none"));
}

TEST_F(X11KeyMonitorTest, whenTheSettingNamesNoKey_saysSoOnceAndRightControlHolds) {
    start();
    defaults_.set("platform.talkKey", "Right Control");
    press("Control_R");
    passGuardTime();
    release("Control_R");
    EXPECT_THAT(told_, ElementsAre("touched", "talk key: Fn", "talk key: none"));
    EXPECT_THAT(log_.printed(),
                ElementsAre("[TovikVoice] No key is named \"Right Control\" (platform.talkKey); the talk key "
                            "is Control_R or XF86Fn"));
}

TEST_F(X11KeyMonitorTest, whenTheSettingIsNoText_rightControlHolds) {
    defaults_.set("platform.talkKey", 105);
    start();
    press("Control_R");
    EXPECT_THAT(told_, ElementsAre("touched"));
    EXPECT_THAT(log_.printed(), ElementsAre(HasSubstr("\"105\"")));
}

TEST_F(X11KeyMonitorTest, whenTheLayoutLacksTheTalkKey_saysSo) {
    defaults_.set("platform.talkKey", "F35");
    start();
    EXPECT_THAT(log_.printed(), ElementsAre("[TovikVoice] No key of the keyboard layout is F35, the talk key "
                                            "(platform.talkKey)"));
}

TEST_F(X11KeyMonitorTest, whenTheKeyboardSendsFn_itIsTheTalkKeyWithoutGuard) {
    user_.remap(user_.keyCode("F10"), "XF86Fn");
    start();
    press("XF86Fn");
    EXPECT_THAT(told_, ElementsAre("touched", "talk key: Fn"));
    user_.release("XF86Fn");
}

TEST_F(X11KeyMonitorTest, whenAnotherGuardTimeIsSet_itHolds) {
    defaults_.set("platform.talkKeyGuard", 0.4);
    start();
    press("Control_R");
    time_.advance(Seconds(0.39));
    EXPECT_THAT(told_, ElementsAre("touched"));
    time_.advance(Seconds(0.01));
    EXPECT_THAT(told_, ElementsAre("touched", "talk key: Fn"));
    release("Control_R");
    defaults_.set("platform.talkKeyGuard", 0);
    told_.clear();
    press("Control_R");
    EXPECT_THAT(told_, ElementsAre("touched", "talk key: Fn"));
}

TEST_F(X11KeyMonitorTest, whenTheGuardTimeIsNoSensibleNumber_theDefaultHolds) {
    defaults_.set("platform.talkKeyGuard", -1);
    start();
    press("Control_R");
    time_.advance(Seconds(0.14));
    EXPECT_THAT(told_, ElementsAre("touched"));
    time_.advance(Seconds(0.01));
    EXPECT_THAT(told_, ElementsAre("touched", "talk key: Fn"));
}

TEST_F(X11KeyMonitorTest, whenAKeyboardIsPluggedInLater_itsKeysCount) {
    start();
    user_.plugInKeyboard("second");
    XUser other;
    other.typeOn("second");
    other.press("Control_R");
    runPendingEvents();
    passGuardTime();
    time_.advance(Seconds(2)); // it stays held, though the first keyboard does not hold it
    EXPECT_THAT(told_, ElementsAre("touched", "talk key: Fn"));
    other.press("Shift_L");
    runPendingEvents();
    other.release("Shift_L");
    runPendingEvents();
    other.release("Control_R");
    runPendingEvents();
    EXPECT_THAT(told_,
                ElementsAre("touched", "talk key: Fn", "shift: Fn Shift", "shift: Fn", "talk key: none"));
    user_.pullOutKeyboard("second");
}

TEST_F(X11KeyMonitorTest, whenAKeyboardIsPulledOutWhileItsTalkKeyIsHeld_theTalkEnds) {
    start();
    user_.plugInKeyboard("second");
    {
        XUser other;
        other.typeOn("second");
        other.press("Control_R");
    }
    runPendingEvents();
    passGuardTime();
    user_.pullOutKeyboard("second");
    runPendingEvents();
    time_.advance(Seconds(1));
    EXPECT_THAT(told_, ElementsAre("touched", "talk key: Fn", "talk key: none"));
    told_.clear();
    press("Control_R");
    passGuardTime();
    EXPECT_THAT(told_, ElementsAre("touched", "talk key: Fn"));
}

TEST_F(X11KeyMonitorTest, whenThisProgramWasBusy_tellsHowLongAgoTheTalkKeyWentDown) {
    start();
    press("Control_R");
    EXPECT_LT(touchedAgo_, Seconds(0.5));
    release("Control_R");
    told_.clear();
    const auto server = std::move(X11Connection::open().value());
    user_.press("Control_R");
    const auto pressed = server->serverTime();
    while (server->serverTime() < pressed + 600) {
    }
    EXPECT_THAT(told_, IsEmpty());
    runPendingEvents();
    EXPECT_GE(touchedAgo_, Seconds(0.6));
}

TEST_F(X11KeyMonitorTest, theTalkKeyIsHeldAlone_whileNoOtherKeyIs) {
    start();
    EXPECT_FALSE(monitor_->isTalkKeyHeldAlone());
    press("Control_R");
    EXPECT_TRUE(monitor_->isTalkKeyHeldAlone());
    press("c");
    EXPECT_FALSE(monitor_->isTalkKeyHeldAlone());
    release("c");
    EXPECT_TRUE(monitor_->isTalkKeyHeldAlone());
    release("Control_R");
    EXPECT_FALSE(monitor_->isTalkKeyHeldAlone());
    press("Control_L");
    EXPECT_FALSE(monitor_->isTalkKeyHeldAlone());
}

TEST_F(X11KeyMonitorTest, whenWePressKeysOurselves_theyAreNotTold) {
    start();
    X11Pasteboard pasteboard(log_);
    X11KeyEventPoster poster({time_, defaults_, log_, posted_, pasteboard});
    defaults_.set("platform.pasteChords", {{"editor", "Ctrl+Shift+V"}});
    press("Control_R");
    passGuardTime();
    release("Control_R");
    told_.clear();
    poster.post({EventSourceState::hidSystem, kVKeyCode, true, kCommandFlag}, EventTap::hid);
    user_.sync();
    runPendingEvents();
    time_.runPending();
    EXPECT_THAT(told_, IsEmpty());
    // The very same keys, pressed by the same means by somebody else.
    press("Shift_L");
    release("Shift_L");
    EXPECT_THAT(told_, ElementsAre("shift: Shift", "shift: none"));
}

TEST_F(X11KeyMonitorTest, whenWePasteWhileTheTalkKeyIsGuarded_ourKeysDoNotDismissIt) {
    start();
    defaults_.set("platform.talkKey", "ISO_Level3_Shift");
    user_.setLayout("de");
    X11Pasteboard pasteboard(log_);
    X11KeyEventPoster poster({time_, defaults_, log_, posted_, pasteboard});
    poster.post({EventSourceState::hidSystem, kVKeyCode, true, kCommandFlag}, EventTap::hid);
    press("ISO_Level3_Shift");
    passGuardTime();
    EXPECT_THAT(told_, ElementsAre("touched", "talk key: Fn"));
}

TEST_F(X11KeyMonitorTest, whenOurStrokesNeverArrive_theUsersAreStillTold) {
    start();
    // The server drops the press of a key that is held already: the user's Shift is on the same test
    // keyboard.
    press("Shift_L");
    X11Pasteboard pasteboard(log_);
    X11KeyEventPoster poster({time_, defaults_, log_, posted_, pasteboard});
    poster.post({EventSourceState::hidSystem, kVKeyCode, true, kCommandFlag}, EventTap::hid);
    runPendingEvents();
    time_.runPending();
    user_.letGo();
    runPendingEvents();
    told_.clear();
    press("Shift_L");
    release("Shift_L");
    EXPECT_THAT(told_, IsSupersetOf({"shift: none"}));
    told_.clear();
    press("Shift_L");
    release("Shift_L");
    EXPECT_THAT(told_, ElementsAre("shift: Shift", "shift: none"));
}

TEST_F(X11KeyMonitorTest, whenANestedServerRepeatsTheHeldKey_itIsHeldOnce) {
    QtMainQueue realTime;
    nested_ = std::make_unique<NestedServer>();
    defaults_.set("platform.talkKey", "F9");
    start(realTime, nested_->display());
    user_.focus(nested_->window());
    user_.press("F9");
    ASSERT_TRUE(runUntil([&] { return told_.size() >= 2; }));
    const auto before = nested_->strokes();
    ASSERT_TRUE(runUntil([&] { return nested_->strokes() >= before + 20; })) << "the server does not repeat";
    EXPECT_THAT(told_, ElementsAre("touched", "talk key: Fn"));
    user_.release("F9");
    EXPECT_TRUE(runUntil([&] { return told_.size() >= 3; }));
    EXPECT_THAT(told_, ElementsAre("touched", "talk key: Fn", "talk key: none"));
    monitor_.reset();
}

TEST_F(X11KeyMonitorTest, whenThereIsNoDisplay_failsWithASentence) {
    X11KeyMonitor monitor({time_, defaults_, log_, posted_, [] { return false; }}, ":97531");
    const auto started = monitor.start({});
    ASSERT_FALSE(started);
    EXPECT_EQ(started.error().description,
              "There is no X display that Tovik Record can reach, so it cannot see the talk key.");
}

TEST_F(X11KeyMonitorTest, whenItGoes_nothingIsLeftBehind) {
    start();
    press("Control_R");
    monitor_.reset();
    user_.release("Control_R");
    time_.advance(Seconds(1));
    runPendingEvents();
    EXPECT_THAT(told_, ElementsAre("touched"));
    EXPECT_EQ(time_.pendingCount(), 0U);
}

} // namespace
