// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// The key event poster on a real X server: what the user still holds, what the layout lacks, and which chord
// goes to whom.
#include "Linux/X11/PostedKeys.h"
#include "Linux/X11/X11Connection.h"
#include "Linux/X11/X11KeyEventPoster.h"
#include "Platform/Keyboard.h"
#include "support/EventLoop.h"
#include "support/ManualTime.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"
#include "support/WindowProgram.h"
#include "support/XUser.h"

#include <QProcess>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace tovik;
using namespace tovik::test;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class X11KeyEventPosterTest : public testing::Test {
protected:
    X11KeyEventPosterTest() {
        user_.setLayout("us");
        user_.focus(program_.window());
        poster_ = makePoster();
    }
    ~X11KeyEventPosterTest() override {
        user_.letGo();
        EXPECT_TRUE(user_.heldKeys().none()) << "a key is stuck";
    }

    std::unique_ptr<X11KeyEventPoster> makePoster() {
        return std::make_unique<X11KeyEventPoster>(
            X11KeyEventPoster::Services{time_, defaults_, log_, posted_, [this] { return targetInFront_; },
                                        [this] { ++broughtToFront_; }});
    }

    void post() {
        poster_->post({EventSourceState::hidSystem, kVKeyCode, true, kCommandFlag}, EventTap::hid);
        poster_->post({EventSourceState::hidSystem, kVKeyCode, false, kCommandFlag}, EventTap::hid);
    }

    /// The keys that went down in the window since the last call.
    std::vector<std::string> pressed() {
        const auto marker = user_.keyCode("F6");
        user_.pressCode(marker);
        user_.releaseCode(marker);
        const auto isMarker = [](const std::string& line) { return line.starts_with("release F6"); };
        EXPECT_TRUE(runUntil([&] {
            return std::any_of(program_.keys().begin(), program_.keys().end(), isMarker);
        })) << "the window has lost the keyboard";
        std::vector<std::string> presses;
        for (const auto& line : program_.keys()) {
            if (line.starts_with("press ") && !line.starts_with("press F6")) {
                presses.push_back(line.substr(6));
            }
        }
        program_.forgetKeys();
        return presses;
    }

    ManualTime time_;
    MemoryUserDefaults defaults_;
    RecordingLog log_;
    PostedKeys posted_;
    bool targetInFront_ = true;
    int broughtToFront_ = 0;
    XUser user_;
    WindowProgram program_{"Editor", "text-editor"};
    std::unique_ptr<X11KeyEventPoster> poster_;
};

TEST_F(X11KeyEventPosterTest, whenNothingIsHeld_pressesShiftInsertAtOnce) {
    post();
    EXPECT_TRUE(user_.heldKeys().none());
    EXPECT_THAT(pressed(), ElementsAre("Shift_L 0x0", "Insert 0x1"));
    EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(X11KeyEventPosterTest, whenAnotherKeyCodeIsAskedFor_makesNoEvent) {
    EXPECT_EQ(poster_->makeEvent(EventSourceState::hidSystem, kShiftKeyCode, true), std::nullopt);
}

struct HeldKey {
    const char* name;
    const char* key;
    const char* layout;
};

class X11KeyEventPosterHeld : public X11KeyEventPosterTest, public testing::WithParamInterface<HeldKey> {};

TEST_P(X11KeyEventPosterHeld, whenTheUserHoldsIt_waitsForItsRelease) {
    user_.setLayout(GetParam().layout);
    user_.press(GetParam().key);
    (void)pressed();
    post();
    time_.advance(Seconds(1.9));
    EXPECT_THAT(pressed(), IsEmpty());
    user_.release(GetParam().key);
    time_.advance(Seconds(0.02));
    EXPECT_THAT(pressed(), ElementsAre("Shift_L 0x0", "Insert 0x1"));
    time_.advance(Seconds(10));
    EXPECT_THAT(pressed(), IsEmpty());
    EXPECT_THAT(log_.printed(), IsEmpty());
    EXPECT_EQ(time_.pendingCount(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Rows, X11KeyEventPosterHeld,
                         testing::Values(HeldKey{"leftControl", "Control_L", "us"},
                                         HeldKey{"rightControl", "Control_R", "us"},
                                         HeldKey{"alt", "Alt_L", "us"}, HeldKey{"super", "Super_L", "us"},
                                         HeldKey{"altGr", "ISO_Level3_Shift", "de"}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(X11KeyEventPosterTest, whenAModifierIsNeverReleased_pastesAfterTwoSecondsAllTheSame) {
    user_.press("Alt_L");
    (void)pressed();
    post();
    time_.advance(Seconds(1.99));
    EXPECT_THAT(pressed(), IsEmpty());
    time_.advance(Seconds(0.01));
    EXPECT_THAT(pressed(), ElementsAre("Shift_L 0x8", "Insert 0x9"));
    EXPECT_THAT(log_.printed(), ElementsAre("[TovikVoice] Pasting although a modifier key is still held"));
    EXPECT_TRUE(user_.heldKeys()[user_.keyCode("Alt_L")]) << "what the user holds stays held";
    time_.advance(Seconds(10));
    EXPECT_THAT(pressed(), IsEmpty());
}

TEST_F(X11KeyEventPosterTest, whenControlIsNeverReleased_pastesAfterTwoSecondsWithWhatItMakesAPaste) {
    user_.press("Control_R");
    (void)pressed();
    post();
    time_.advance(Seconds(1.99));
    EXPECT_THAT(pressed(), IsEmpty());
    time_.advance(Seconds(0.01));
    EXPECT_THAT(pressed(), ElementsAre("Control_L 0x4", "v 0x4"));
    EXPECT_TRUE(user_.heldKeys()[user_.keyCode("Control_R")]) << "what the user holds stays held";
    time_.advance(Seconds(10));
    EXPECT_THAT(pressed(), IsEmpty());
}

TEST_F(X11KeyEventPosterTest, whenAnotherWindowIsInFront_bringsTheTargetThereAndWaitsForIt) {
    targetInFront_ = false;
    post();
    EXPECT_EQ(broughtToFront_, 1);
    time_.advance(Seconds(0.1));
    EXPECT_THAT(pressed(), IsEmpty());
    targetInFront_ = true;
    time_.advance(Seconds(0.02));
    EXPECT_THAT(pressed(), ElementsAre("Shift_L 0x0", "Insert 0x1"));
    EXPECT_EQ(broughtToFront_, 1);
    EXPECT_THAT(log_.printed(), IsEmpty());
}

TEST_F(X11KeyEventPosterTest, whenTheTargetNeverComesToTheFront_pastesAfterTwoSecondsAllTheSame) {
    targetInFront_ = false;
    post();
    time_.advance(Seconds(1.99));
    EXPECT_THAT(pressed(), IsEmpty());
    time_.advance(Seconds(0.01));
    EXPECT_THAT(pressed(), ElementsAre("Shift_L 0x0", "Insert 0x1"));
    EXPECT_THAT(log_.printed(),
                ElementsAre("[TovikVoice] Pasting although the target app did not come to the front"));
}

TEST_F(X11KeyEventPosterTest, whenAModifierIsLetGoAndThatBringsAnotherWindow_waitsForTheTarget) {
    user_.press("Alt_L");
    (void)pressed();
    post();
    EXPECT_EQ(broughtToFront_, 0) << "nobody takes the window away from somebody who is choosing one";
    targetInFront_ = false;
    user_.release("Alt_L");
    time_.advance(Seconds(0.02));
    EXPECT_THAT(pressed(), IsEmpty());
    EXPECT_EQ(broughtToFront_, 1);
    targetInFront_ = true;
    time_.advance(Seconds(0.02));
    EXPECT_THAT(pressed(), ElementsAre("Shift_L 0x0", "Insert 0x1"));
}

TEST_F(X11KeyEventPosterTest, whenWhateverIsInFrontIsMeant_noTargetIsWaitedFor) {
    targetInFront_ = false;
    poster_->post({EventSourceState::combinedSession, kVKeyCode, true, kCommandFlag},
                  EventTap::annotatedSession);
    EXPECT_THAT(pressed(), ElementsAre("Shift_L 0x0", "Insert 0x1"));
    EXPECT_EQ(broughtToFront_, 0);
}

TEST_F(X11KeyEventPosterTest, whenTwoPastesWait_bothFollow) {
    user_.press("Alt_L");
    (void)pressed();
    post();
    time_.advance(Seconds(0.5));
    post();
    EXPECT_THAT(pressed(), IsEmpty());
    user_.release("Alt_L");
    time_.advance(Seconds(0.02));
    EXPECT_THAT(pressed(), ElementsAre("Shift_L 0x0", "Insert 0x1", "Shift_L 0x0", "Insert 0x1"));
}

TEST_F(X11KeyEventPosterTest, whenThePosterGoesWhileItWaits_nothingIsPressed) {
    user_.press("Alt_L");
    (void)pressed();
    post();
    poster_.reset();
    user_.release("Alt_L");
    time_.advance(Seconds(3));
    EXPECT_THAT(pressed(), IsEmpty());
}

TEST_F(X11KeyEventPosterTest, whenTheUserHoldsTheOtherShift_pastesAtOnceAndLeavesItHeld) {
    user_.press("Shift_R");
    (void)pressed();
    post();
    EXPECT_TRUE(user_.heldKeys()[user_.keyCode("Shift_R")]);
    EXPECT_THAT(pressed(), ElementsAre("Shift_L 0x1", "Insert 0x1"));
}

/// Core modifier bits.
constexpr unsigned kCapsLock = 0x2;
constexpr unsigned kNumLock = 0x10;

struct Lock {
    const char* name;
    unsigned modifiers;
    const char* chord;
};

class X11KeyEventPosterLocked : public X11KeyEventPosterTest, public testing::WithParamInterface<Lock> {};

TEST_P(X11KeyEventPosterLocked, whenItIsOn_pastesAtOnce) {
    user_.lockModifiers(GetParam().modifiers);
    post();
    EXPECT_THAT(pressed(), Contains(GetParam().chord));
}

INSTANTIATE_TEST_SUITE_P(Rows, X11KeyEventPosterLocked,
                         testing::Values(Lock{"capsLock", kCapsLock, "Insert 0x3"},
                                         Lock{"numLock", kNumLock, "Insert 0x11"},
                                         Lock{"both", kCapsLock | kNumLock, "Insert 0x13"}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(X11KeyEventPosterTest, whenTheLayoutLacksInsert_borrowsAKeyAndGivesItBack) {
    const auto insert = user_.keyCode("Insert");
    user_.remap(insert, "Menu");
    ASSERT_FALSE(user_.hasKey("Insert"));
    post();
    EXPECT_THAT(pressed(), ElementsAre("Shift_L 0x0", "Insert 0x1"));
    const auto borrowed = user_.keyCode("Insert");
    EXPECT_NE(borrowed, insert);
    post();
    EXPECT_THAT(pressed(), ElementsAre("Shift_L 0x0", "Insert 0x1"));
    EXPECT_EQ(user_.keyCode("Insert"), borrowed) << "one is enough";
    poster_.reset();
    EXPECT_FALSE(user_.hasKey("Insert"));
}

TEST_F(X11KeyEventPosterTest, whenABorrowedKeyWasPutToOtherUse_itIsLeftAlone) {
    user_.remap(user_.keyCode("Insert"), "Menu");
    post();
    const auto borrowed = user_.keyCode("Insert");
    user_.remap(borrowed, "F35");
    poster_.reset();
    EXPECT_EQ(user_.keyCode("F35"), borrowed);
}

TEST_F(X11KeyEventPosterTest, whenNoKeyIsToSpare_saysSoAndPressesNothing) {
    for (const auto free : user_.unusedKeyCodes()) {
        user_.remap(free, "F35");
    }
    user_.remap(user_.keyCode("Insert"), "Menu");
    post();
    EXPECT_THAT(pressed(), IsEmpty());
    EXPECT_THAT(
        log_.printed(),
        ElementsAre("[TovikVoice] Failed to press the paste keys: The keyboard layout lacks the key of "
                    "the paste chord and has no key to spare."));
}

struct ChordRow {
    const char* name;
    const char* id;
    const char* chord;
    const char* layout;
    std::vector<std::string> pressed;
};

class X11KeyEventPosterChord : public X11KeyEventPosterTest, public testing::WithParamInterface<ChordRow> {};

TEST_P(X11KeyEventPosterChord, whenTheApplicationWantsIt_pressesIt) {
    user_.setLayout(GetParam().layout);
    defaults_.set("platform.pasteChords", {{GetParam().id, GetParam().chord}});
    post();
    EXPECT_EQ(pressed(), GetParam().pressed);
    EXPECT_TRUE(user_.heldKeys().none());
}

const std::vector<std::string> kShiftInsert{"Shift_L 0x0", "Insert 0x1"};

INSTANTIATE_TEST_SUITE_P(
    Rows, X11KeyEventPosterChord,
    testing::Values(
        ChordRow{"byClass", "editor", "Ctrl+V", "us", {"Control_L 0x0", "v 0x4"}},
        ChordRow{"byClassAsWritten", "Editor", "Ctrl+V", "us", {"Control_L 0x0", "v 0x4"}},
        ChordRow{"byInstance", "text-editor", "Ctrl+V", "us", {"Control_L 0x0", "v 0x4"}},
        ChordRow{"ofAnother", "browser", "Ctrl+V", "us", kShiftInsert},
        ChordRow{"threeKeys", "editor", "Ctrl+Shift+V", "us", {"Control_L 0x0", "Shift_L 0x4", "V 0x5"}},
        ChordRow{"lowerCase", "editor", "control+shift+v", "us", {"Control_L 0x0", "Shift_L 0x4", "V 0x5"}},
        ChordRow{"onDvorak", "editor", "Ctrl+V", "us -variant dvorak", {"Control_L 0x0", "v 0x4"}},
        ChordRow{"onGerman", "editor", "Ctrl+V", "de", {"Control_L 0x0", "v 0x4"}},
        ChordRow{"onRussianWithoutV", "editor", "Ctrl+V", "ru", {"Control_L 0x0", "v 0x4"}},
        ChordRow{"oneKey", "editor", "F18", "us", {"F18 0x0"}},
        ChordRow{"withSuper", "editor", "Super+V", "us", {"Super_L 0x0", "v 0x40"}},
        ChordRow{"thatIsNone", "editor", "Ctrl+Nonsense", "us", kShiftInsert},
        ChordRow{"ofModifiersAlone", "editor", "Ctrl+Shift", "us", kShiftInsert},
        ChordRow{"empty", "editor", "", "us", kShiftInsert}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(X11KeyEventPosterTest, whenAnEntryIsNoChord_saysSoOnce) {
    defaults_.set("platform.pasteChords", {{"editor", "Ctrl+Nonsense"}});
    post();
    post();
    EXPECT_THAT(log_.printed(),
                ElementsAre("[TovikVoice] \"Ctrl+Nonsense\" in platform.pasteChords is no key "
                            "chord; pasting with Shift+Insert"));
}

TEST_F(X11KeyEventPosterTest, whenTheTableIsOfAnotherType_pastesAsUsual) {
    defaults_.set("platform.pasteChords", "Ctrl+V");
    post();
    EXPECT_EQ(pressed(), kShiftInsert);
}

TEST_F(X11KeyEventPosterTest, whenTheChordIsControlV_aHeldShiftIsWaitedForAndControlIsNot) {
    defaults_.set("platform.pasteChords", {{"editor", "Ctrl+V"}});
    user_.press("Shift_L");
    (void)pressed();
    post();
    time_.advance(Seconds(1));
    EXPECT_THAT(pressed(), IsEmpty());
    user_.release("Shift_L");
    user_.press("Control_R");
    (void)pressed();
    time_.advance(Seconds(0.02));
    EXPECT_THAT(pressed(), Contains("v 0x4"));
}

TEST_F(X11KeyEventPosterTest, whenNoMonitorListens_noAnnouncementIsLeftBehind) {
    post();
    EXPECT_FALSE(posted_.expects({user_.keyCode("Insert"), true}));
}

/// A server of the test's own, without some extension.
class PlainServer {
public:
    explicit PlainServer(const QStringList& options) {
        process_.setStandardErrorFile(QProcess::nullDevice());
        process_.start("Xvfb", QStringList{"-displayfd", "1", "-ac"} + options);
        EXPECT_TRUE(runUntil([this] { return process_.canReadLine(); }));
        display_ = ":" + process_.readLine().trimmed().toStdString();
    }
    PlainServer(const PlainServer&) = delete;
    PlainServer& operator=(const PlainServer&) = delete;
    ~PlainServer() {
        process_.terminate();
        process_.waitForFinished();
    }
    [[nodiscard]] const std::string& display() const { return display_; }

private:
    QProcess process_;
    std::string display_;
};

TEST(X11Session, whenTheServerHasAll_isUsableAndHasNothingToSay) {
    const auto session = X11Session::examine();
    EXPECT_TRUE(session.usable());
    EXPECT_FALSE(session.underWayland);
    EXPECT_EQ(session.sentence, "");
}

TEST(X11Session, whenTheServerLacksXTest_saysThatPastingIsImpossibleAndNoEventIsMade) {
    const PlainServer server({"-extension", "XTEST"});
    const auto session = X11Session::examine(server.display());
    EXPECT_TRUE(session.canSeeKeys);
    EXPECT_FALSE(session.canPressKeys);
    EXPECT_FALSE(session.usable());
    EXPECT_EQ(session.sentence,
              "This X server does not let Tovik Record paste: it lacks the XTEST extension.");

    ManualTime time;
    MemoryUserDefaults defaults;
    RecordingLog log;
    PostedKeys posted;
    X11KeyEventPoster poster({time, defaults, log, posted}, server.display());
    EXPECT_EQ(poster.makeEvent(EventSourceState::hidSystem, kVKeyCode, true), std::nullopt);
    poster.post({EventSourceState::hidSystem, kVKeyCode, true, kCommandFlag}, EventTap::hid);
    EXPECT_EQ(time.pendingCount(), 0U);
}

TEST(X11Session, whenThereIsNoDisplay_saysSoAndNoEventIsMade) {
    const auto session = X11Session::examine(":97531");
    EXPECT_FALSE(session.usable());
    EXPECT_EQ(session.sentence,
              "There is no X display that Tovik Record can reach, so it cannot see the talk key.");

    ManualTime time;
    MemoryUserDefaults defaults;
    RecordingLog log;
    PostedKeys posted;
    X11KeyEventPoster poster({time, defaults, log, posted}, ":97531");
    EXPECT_EQ(poster.makeEvent(EventSourceState::hidSystem, kVKeyCode, true), std::nullopt);
}

} // namespace
