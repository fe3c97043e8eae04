// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// The key event poster on a real X server: what the user still holds, what the layout lacks, and which chord
// goes to whom.
#include "Linux/X11/PostedKeys.h"
#include "Linux/X11/X11Connection.h"
#include "Linux/X11/X11KeyEventPoster.h"
#include "Linux/X11/X11Pasteboard.h"
#include "Platform/Keyboard.h"
#include "support/EventLoop.h"
#include "support/ManualTime.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"
#include "support/WindowProgram.h"
#include "support/XUser.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QProcess>
#include <QWindow>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
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

    std::unique_ptr<X11KeyEventPoster> makePoster() { return makePoster(pasteboard_); }
    std::unique_ptr<X11KeyEventPoster> makePoster(X11Pasteboard& pasteboard) {
        return std::make_unique<X11KeyEventPoster>(X11KeyEventPoster::Services{
            .queue = time_,
            .defaults = defaults_,
            .log = log_,
            .posted = posted_,
            .pasteboard = pasteboard,
            .target = [this] { return target_; },
            .isInFront =
                [this](const auto& target) {
                    if (onLook_) {
                        std::exchange(onLook_, nullptr)();
                    }
                    return target == inFront_;
                },
            .bringToFront =
                [this](const auto& target) { brought_.push_back(target.localizedName.value_or("")); },
            .isTalkKeyHeldAlone = [this] { return isTalkKeyHeldAlone_; }});
    }

    void post() {
        poster_->post({EventSourceState::hidSystem, kVKeyCode, true, kCommandFlag}, EventTap::hid);
        poster_->post({EventSourceState::hidSystem, kVKeyCode, false, kCommandFlag}, EventTap::hid);
    }

    void post(const std::string& text) {
        pasteboard_.replaceContents(text);
        post();
    }

    /// The keys that went down in the window since the last call.
    std::vector<std::string> pressed() { return pressed(program_); }
    std::vector<std::string> pressed(WindowProgram& program) {
        const auto marker = user_.keyCode("F6");
        user_.pressCode(marker);
        user_.releaseCode(marker);
        const auto isMarker = [](const std::string& line) { return line.starts_with("release F6"); };
        EXPECT_TRUE(runUntil([&] {
            return std::any_of(program.keys().begin(), program.keys().end(), isMarker);
        })) << "the window has lost the keyboard";
        std::vector<std::string> presses;
        for (const auto& line : program.keys()) {
            if (line.starts_with("press ") && !line.starts_with("press F6")) {
                presses.push_back(line.substr(6));
            }
        }
        program.forgetKeys();
        return presses;
    }

    ManualTime time_;
    MemoryUserDefaults defaults_;
    RecordingLog log_;
    PostedKeys posted_;
    X11Pasteboard pasteboard_{log_};
    const RunningApplication editor_{std::nullopt, 1, "Editor", 0};
    const RunningApplication mailer_{std::nullopt, 2, "Mailer", 0};
    std::optional<RunningApplication> target_ = editor_;
    RunningApplication inFront_ = editor_;
    std::vector<std::string> brought_;
    bool isTalkKeyHeldAlone_ = false;
    /// Happens between the look at the modifiers and the chord.
    std::function<void()> onLook_;
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

TEST_F(X11KeyEventPosterTest, whenAModifierIsNotReleasedForTenSeconds_pastesNothingAndSaysSo) {
    std::vector<bool> givenUp;
    const auto subscription =
        poster_->givenUp.add([&](bool isOnClipboard) { givenUp.push_back(isOnClipboard); });
    user_.press("Alt_L");
    (void)pressed();
    post("text");
    time_.advance(Seconds(9.99));
    EXPECT_TRUE(poster_->isPosting());
    EXPECT_THAT(givenUp, IsEmpty());
    time_.advance(Seconds(0.01));
    EXPECT_FALSE(poster_->isPosting());
    EXPECT_THAT(givenUp, ElementsAre(true));
    EXPECT_THAT(log_.printed(),
                ElementsAre("[TovikVoice] The text was not pasted, since a modifier key was held: "
                            "it is in the history"));
    EXPECT_EQ(pasteboard_.contents(), "text");
    user_.release("Alt_L");
    time_.advance(Seconds(10));
    EXPECT_THAT(pressed(), IsEmpty());
}

TEST_F(X11KeyEventPosterTest, whenControlIsHeldForTwoSeconds_pastesWithWhatItMakesAPaste) {
    user_.press("Control_R");
    (void)pressed();
    post();
    time_.advance(Seconds(1.9));
    EXPECT_THAT(pressed(), IsEmpty());
    time_.advance(Seconds(0.1));
    EXPECT_THAT(pressed(), ElementsAre("Control_L 0x4", "v 0x4"));
    EXPECT_TRUE(user_.heldKeys()[user_.keyCode("Control_R")]) << "what the user holds stays held";
    time_.advance(Seconds(10));
    EXPECT_THAT(pressed(), IsEmpty());
}

TEST_F(X11KeyEventPosterTest, whenAnotherWindowIsInFront_bringsTheTargetThereAndWaitsForIt) {
    inFront_ = mailer_;
    post();
    EXPECT_THAT(brought_, ElementsAre("Editor"));
    time_.advance(Seconds(0.1));
    EXPECT_THAT(pressed(), IsEmpty());
    inFront_ = editor_;
    time_.advance(Seconds(0.02));
    EXPECT_THAT(pressed(), ElementsAre("Shift_L 0x0", "Insert 0x1"));
    EXPECT_THAT(brought_, ElementsAre("Editor"));
    EXPECT_THAT(log_.printed(), IsEmpty());
}

TEST_F(X11KeyEventPosterTest, whenTheTargetDoesNotComeToTheFront_itIsAskedForTwoSecondsAndWaitedForTen) {
    inFront_ = mailer_;
    post("text");
    time_.advance(Seconds(2));
    EXPECT_EQ(brought_.size(), 10U);
    time_.advance(Seconds(7.99));
    EXPECT_EQ(brought_.size(), 10U) << "nobody is called back for ever";
    EXPECT_TRUE(poster_->isPosting());
    time_.advance(Seconds(0.01));
    EXPECT_THAT(pressed(), IsEmpty()) << "it is not for the one that is in front";
    EXPECT_THAT(log_.printed(),
                ElementsAre("[TovikVoice] The text was not pasted, since its window did not come to "
                            "the front: it is in the history"));
}

TEST_F(X11KeyEventPosterTest, whenTheUserComesBackToTheTarget_itGetsItsText) {
    inFront_ = mailer_;
    post("text");
    time_.advance(Seconds(9));
    EXPECT_THAT(pressed(), IsEmpty());
    inFront_ = editor_;
    time_.advance(Seconds(0.02));
    EXPECT_THAT(pressed(), ElementsAre("Shift_L 0x0", "Insert 0x1"));
    EXPECT_THAT(log_.printed(), IsEmpty());
}

TEST_F(X11KeyEventPosterTest, whenTheTalkKeyIsHeldAlone_pastesAtOnceBesideIt) {
    user_.press("Control_R");
    (void)pressed();
    isTalkKeyHeldAlone_ = true;
    post("text");
    EXPECT_THAT(pressed(), ElementsAre("Control_L 0x4", "v 0x4"));
    EXPECT_TRUE(user_.heldKeys()[user_.keyCode("Control_R")]) << "what the user holds stays held";
}

TEST_F(X11KeyEventPosterTest, whenTheClipboardHoldsAnotherTextByThen_saysThatTheTextIsNotThere) {
    std::vector<bool> givenUp;
    const auto subscription =
        poster_->givenUp.add([&](bool isOnClipboard) { givenUp.push_back(isOnClipboard); });
    user_.press("Alt_L");
    (void)pressed();
    post("first");
    post("second");
    time_.advance(Seconds(10));
    EXPECT_THAT(givenUp, ElementsAre(false, true));
}

TEST_F(X11KeyEventPosterTest, whenNobodyFetchesWhatWasPressedBesideTheTalkKey_saysSoAndPressesNoMore) {
    std::vector<bool> givenUp;
    const auto subscription =
        poster_->givenUp.add([&](bool isOnClipboard) { givenUp.push_back(isOnClipboard); });
    user_.press("Control_R");
    (void)pressed();
    isTalkKeyHeldAlone_ = true;
    post("text");
    EXPECT_THAT(pressed(), ElementsAre("Control_L 0x4", "v 0x4"));
    time_.advance(Seconds(0.99));
    EXPECT_THAT(givenUp, IsEmpty());
    time_.advance(Seconds(0.01));
    EXPECT_THAT(givenUp, ElementsAre(true));
    EXPECT_THAT(
        log_.printed(),
        ElementsAre("[TovikVoice] The text was not pasted, since its window took no notice of the keys "
                    "that paste beside Control: it is in the history"));
    user_.release("Control_R");
    isTalkKeyHeldAlone_ = false;
    time_.advance(Seconds(20));
    EXPECT_THAT(pressed(), IsEmpty());
    EXPECT_FALSE(poster_->isPosting());
}

TEST_F(X11KeyEventPosterTest, whenTheClipboardCannotBeHad_pressesNothingAndSaysSo) {
    X11Pasteboard nowhere(log_, ":97531", X11Pasteboard::Patience());
    poster_ = makePoster(nowhere);
    std::vector<bool> givenUp;
    const auto subscription =
        poster_->givenUp.add([&](bool isOnClipboard) { givenUp.push_back(isOnClipboard); });
    nowhere.replaceContents("text");
    post();
    EXPECT_THAT(pressed(), IsEmpty()) << "a stranger's text would be pasted";
    EXPECT_THAT(givenUp, ElementsAre(false));
    EXPECT_FALSE(poster_->isPosting());
    EXPECT_THAT(log_.printed(),
                Contains("[TovikVoice] The text was not pasted, since it could not be put on the clipboard: "
                         "it is in the history"));
    poster_.reset();
}

struct NoPasteBesideControl {
    const char* name;
    const char* className;
    std::vector<std::string> pressed;
};

class X11KeyEventPosterBesideControl : public X11KeyEventPosterTest,
                                       public testing::WithParamInterface<NoPasteBesideControl> {};

TEST_P(X11KeyEventPosterBesideControl, whereNothingPastesBesideTheTalkKey_waitsForItsRelease) {
    defaults_.set("platform.primaryPasters", {"listed"});
    defaults_.set("platform.pasteChords", {{"own-chord", "Shift+F5"}});
    WindowProgram window(GetParam().className);
    user_.focus(window.window());
    user_.press("Control_R");
    (void)pressed(window);
    isTalkKeyHeldAlone_ = true;
    post("text");
    time_.advance(Seconds(9.9));
    EXPECT_THAT(pressed(window), IsEmpty());
    user_.release("Control_R");
    time_.advance(Seconds(0.02));
    EXPECT_EQ(pressed(window), GetParam().pressed);
    user_.focus(program_.window());
}

INSTANTIATE_TEST_SUITE_P(
    Rows, X11KeyEventPosterBesideControl,
    testing::Values(NoPasteBesideControl{"emacs", "Emacs", {"Shift_L 0x0", "Insert 0x1"}},
                    NoPasteBesideControl{"gvim", "Gvim", {"Shift_L 0x0", "Insert 0x1"}},
                    NoPasteBesideControl{"tilda", "Tilda", {"Shift_L 0x0", "Insert 0x1"}},
                    NoPasteBesideControl{"listed", "Listed", {"Shift_L 0x0", "Insert 0x1"}},
                    NoPasteBesideControl{"ofTheUsersOwnChord", "Own-Chord", {"Shift_L 0x0", "F5 0x1"}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(X11KeyEventPosterTest, whenTheTalkKeyGoesDownAtThatVeryMoment_pastesAgainAsNobodyFetchesTheText) {
    onLook_ = [this] {
        user_.press("Control_R");
        user_.sync();
        isTalkKeyHeldAlone_ = true;
    };
    post("text");
    EXPECT_THAT(pressed(), ElementsAre("Control_R 0x0", "Shift_L 0x4", "Insert 0x5"));
    time_.advance(Seconds(0.99));
    EXPECT_THAT(pressed(), IsEmpty());
    time_.advance(Seconds(0.01));
    EXPECT_THAT(pressed(), ElementsAre("Control_L 0x4", "v 0x4"));
    time_.advance(Seconds(20));
    EXPECT_THAT(pressed(), IsEmpty()) << "once is enough";
    EXPECT_FALSE(poster_->isPosting());
}

TEST_F(X11KeyEventPosterTest, whenPastesWaitForDifferentTargets_eachBringsItsOwn) {
    user_.press("Super_L");
    (void)pressed();
    post("to the editor");
    target_ = mailer_;
    post("to the mailer");
    target_.reset();
    EXPECT_THAT(brought_, IsEmpty());
    inFront_ = mailer_;
    user_.release("Super_L");
    time_.advance(Seconds(0.02));
    EXPECT_THAT(brought_, ElementsAre("Editor"));
    inFront_ = editor_;
    time_.advance(Seconds(0.02));
    EXPECT_THAT(pressed(), ElementsAre("Shift_L 0x0", "Insert 0x1"));
    time_.advance(Seconds(1));
    EXPECT_THAT(brought_, ElementsAre("Editor", "Mailer"));
    EXPECT_THAT(pressed(), IsEmpty());
    inFront_ = mailer_;
    time_.advance(Seconds(0.02));
    EXPECT_THAT(pressed(), ElementsAre("Shift_L 0x0", "Insert 0x1"));
}

TEST_F(X11KeyEventPosterTest, whenAModifierIsLetGoAndThatBringsAnotherWindow_waitsForTheTarget) {
    user_.press("Alt_L");
    (void)pressed();
    post();
    EXPECT_THAT(brought_, IsEmpty()) << "nobody takes the window away from somebody who is choosing one";
    inFront_ = mailer_;
    user_.release("Alt_L");
    time_.advance(Seconds(0.02));
    EXPECT_THAT(pressed(), IsEmpty());
    EXPECT_THAT(brought_, ElementsAre("Editor"));
    inFront_ = editor_;
    time_.advance(Seconds(0.02));
    EXPECT_THAT(pressed(), ElementsAre("Shift_L 0x0", "Insert 0x1"));
}

TEST_F(X11KeyEventPosterTest, whenWhateverIsInFrontIsMeant_noTargetIsWaitedFor) {
    inFront_ = mailer_;
    poster_->post({EventSourceState::combinedSession, kVKeyCode, true, kCommandFlag},
                  EventTap::annotatedSession);
    EXPECT_THAT(pressed(), ElementsAre("Shift_L 0x0", "Insert 0x1"));
    EXPECT_THAT(brought_, IsEmpty());
}

TEST_F(X11KeyEventPosterTest, whenAWindowNeverFetchesItsText_theNextFollowsAfterASecond) {
    user_.press("Alt_L");
    (void)pressed();
    post("first");
    time_.advance(Seconds(0.5));
    post("second");
    EXPECT_THAT(pressed(), IsEmpty());
    user_.release("Alt_L");
    time_.advance(Seconds(0.02));
    EXPECT_THAT(pressed(), ElementsAre("Shift_L 0x0", "Insert 0x1"));
    time_.advance(Seconds(0.99));
    EXPECT_THAT(pressed(), IsEmpty());
    time_.advance(Seconds(0.01));
    EXPECT_THAT(pressed(), ElementsAre("Shift_L 0x0", "Insert 0x1"));
    time_.advance(Seconds(1));
    EXPECT_FALSE(poster_->isPosting());
    EXPECT_EQ(time_.pendingCount(), 0U);
}

/// The keyboard is that of a window that pastes.
class X11KeyEventPosterFetched : public X11KeyEventPosterTest,
                                 public testing::WithParamInterface<const char*> {
protected:
    X11KeyEventPosterFetched() { user_.focus(window_.window()); }

    /// Until the window shows so many; meanwhile time moves on as fast as texts are fetched.
    std::vector<std::string> texts(std::size_t count) {
        EXPECT_TRUE(runUntil([&] {
            time_.runPending();
            time_.advance(window_.texts().size() > fetched_ ? Seconds(0.05) : Seconds(0));
            fetched_ = window_.texts().size();
            return fetched_ >= count;
        }));
        return window_.texts();
    }

    WindowProgram window_{"Editor", "editor", GetParam()};
    std::size_t fetched_ = 0;
};

TEST_P(X11KeyEventPosterFetched, whenTextsArePostedAtOnce_eachArrivesOnceInItsOrder) {
    for (const auto* const text : {"one", "two", "three"}) {
        post(text);
    }
    pasteboard_.replaceContents("copied meanwhile");
    EXPECT_THAT(texts(3), ElementsAre("one", "two", "three"));
    EXPECT_TRUE(runUntil([&] {
        time_.advance(Seconds(0.01));
        return !poster_->isPosting();
    }));
    post();
    EXPECT_THAT(texts(4), ElementsAre("one", "two", "three", "copied meanwhile"));
}

TEST_P(X11KeyEventPosterFetched, whenTextsWaitForAKeyToBeReleased_eachArrivesOnceInItsOrder) {
    user_.press("Super_L");
    for (const auto* const text : {"one", "two"}) {
        post(text);
        time_.advance(Seconds(0.5));
    }
    user_.release("Super_L");
    time_.advance(Seconds(0.02));
    EXPECT_THAT(texts(2), ElementsAre("one", "two"));
}

TEST_P(X11KeyEventPosterFetched, whenATextIsPastedBesideTheTalkKey_arrivesOnceAndIsNotGivenUp) {
    int givenUp = 0;
    const auto subscription = poster_->givenUp.add([&](bool) { ++givenUp; });
    user_.press("Control_R");
    isTalkKeyHeldAlone_ = true;
    post("one");
    EXPECT_THAT(texts(1), ElementsAre("one"));
    EXPECT_TRUE(runUntil([&] {
        time_.advance(Seconds(0.01));
        return !poster_->isPosting();
    }));
    EXPECT_EQ(givenUp, 0);
    EXPECT_THAT(log_.printed(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Windows, X11KeyEventPosterFetched, testing::Values("pastes", "pastes-late"),
                         [](const auto& row) {
                             return std::string(row.param).substr(0, 6) +
                                    (row.param == std::string("pastes") ? "AtOnce" : "Late");
                         });

TEST_F(X11KeyEventPosterTest, whenAWindowFetchesItsTextAgainAndAgain_itIsDoneSoonAfterTheFirstTime) {
    QWindow window;
    window.show();
    EXPECT_TRUE(runUntil([&] { return window.isExposed(); }));
    user_.focus(window.winId());
    const auto fetch = [this] {
        EXPECT_TRUE(runUntil([] { return QGuiApplication::clipboard()->text() == "text"; }));
        time_.runPending();
    };
    post("text");
    fetch();
    time_.advance(Seconds(0.04));
    EXPECT_TRUE(poster_->isPosting());
    fetch();
    time_.advance(Seconds(0.02));
    EXPECT_FALSE(poster_->isPosting());
    user_.focus(program_.window());
}

struct PrimaryRow {
    friend std::ostream& operator<<(std::ostream& out, const PrimaryRow& row) { return out << row.name; }

    const char* name;
    const char* className;
    bool fromPrimary;
};

class X11KeyEventPosterPrimary : public X11KeyEventPosterTest,
                                 public testing::WithParamInterface<PrimaryRow> {};

TEST_P(X11KeyEventPosterPrimary, onlyWindowsThatPasteFromIt_changeThePrimarySelection) {
    defaults_.set("platform.primaryPasters", {"other-paster", 5});
    const WindowProgram window(GetParam().className);
    user_.focus(window.window());
    post("text");
    QProcess xclip;
    xclip.start("xclip", {"-o", "-selection", "primary"});
    EXPECT_TRUE(runUntil([&] { return xclip.state() == QProcess::NotRunning; }));
    EXPECT_EQ(xclip.readAllStandardOutput().toStdString(), GetParam().fromPrimary ? "text" : "");
    user_.focus(program_.window());
}

INSTANTIATE_TEST_SUITE_P(
    Rows, X11KeyEventPosterPrimary,
    testing::Values(PrimaryRow{"editor", "Mousepad", false}, PrimaryRow{"xterm", "XTerm", true},
                    PrimaryRow{"vte", "Lxterminal", true}, PrimaryRow{"pterm", "pterm", true},
                    PrimaryRow{"putty", "Putty", true}, PrimaryRow{"gvim", "Gvim", true},
                    PrimaryRow{"emacs", "Emacs", false}, PrimaryRow{"listed", "Other-Paster", true}),
    [](const auto& row) { return std::string(row.param.name); });

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
    X11Pasteboard pasteboard(log);
    X11KeyEventPoster poster({time, defaults, log, posted, pasteboard}, server.display());
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
    X11Pasteboard pasteboard(log);
    X11KeyEventPoster poster({time, defaults, log, posted, pasteboard}, ":97531");
    EXPECT_EQ(poster.makeEvent(EventSourceState::hidSystem, kVKeyCode, true), std::nullopt);
}

} // namespace
