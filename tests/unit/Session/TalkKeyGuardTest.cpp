// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/TalkKeyGuard.h"

#include "support/ManualTime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace tovik {
namespace {

using test::ManualTime;

constexpr Seconds kGuardTime{0.15};

std::string nameOf(const FlagsChangedEvent& event) {
    std::string name = event.keyCode == kFunctionKeyCode ? "key:" : "shift:";
    if (event.modifierFlags == 0) {
        return name + "-";
    }
    if ((event.modifierFlags & kFunctionFlag) != 0) {
        name += 'F';
    }
    if ((event.modifierFlags & kShiftFlag) != 0) {
        name += 'S';
    }
    return name;
}

/// A guard whose keyboard is played from a line of words and whose notices are read as one.
class Keyboard {
public:
    explicit Keyboard(Seconds guardTime = kGuardTime) : guardTime_(guardTime) {
        guard_.setHandlers({.flagsChanged = [this](const FlagsChangedEvent& event) { note(nameOf(event)); },
                            .talkKeyTouched = [this](Seconds) { note("touched"); },
                            .talkKeyDismissed = [this] { note("dismissed"); }});
    }

    /// Words: T and t talk key down and up, S and s Shift down and up, C another key down, "14ms" and the
    /// like time that passes, "ours" and "others" who is in front, "busy" keys that wait while time passes
    /// until the guard asks for them.
    void play(const std::string& script) {
        std::istringstream words(script);
        for (std::string word; words >> word;) {
            if (word == "busy") {
                std::getline(words, waiting_);
                time_.advance(kGuardTime);
                return;
            }
            playWord(word);
        }
    }

    [[nodiscard]] std::string told() const { return told_; }
    [[nodiscard]] std::size_t timers() const { return time_.pendingCount(); }
    [[nodiscard]] TalkKeyGuard& guard() { return guard_; }
    [[nodiscard]] ManualTime& time() { return time_; }

private:
    void playWord(const std::string& word) {
        if (word == "T") {
            guard_.talkKeyPressed(guardTime_);
        } else if (word == "t") {
            guard_.talkKeyReleased();
        } else if (word == "S" || word == "s") {
            guard_.setShiftHeld(word == "S");
        } else if (word == "C") {
            guard_.otherKeyPressed();
        } else if (word == "ours" || word == "others") {
            othersInFront_ = word == "others";
        } else if (word.ends_with("ms")) {
            time_.advance(Seconds(std::stod(word) / 1000));
        } else {
            FAIL() << "unknown word " << word;
        }
    }
    void catchUp() {
        std::istringstream words(waiting_);
        waiting_.clear();
        for (std::string word; words >> word;) {
            playWord(word);
        }
    }
    void note(const std::string& notice) { told_ += (told_.empty() ? "" : " ") + notice; }

    Seconds guardTime_;
    bool othersInFront_ = true;
    std::string told_;
    std::string waiting_;
    ManualTime time_;
    TalkKeyGuard guard_{time_, {[this] { return othersInFront_; }, [this] { catchUp(); }}};
};

struct Row {
    const char* name;
    const char* keys;
    const char* told;
};

std::ostream& operator<<(std::ostream& out, const Row& row) {
    return out << row.keys;
}

std::string nameOfRow(const testing::TestParamInfo<Row>& row) {
    return row.param.name;
}

class TalkKeyGuardOrder : public testing::TestWithParam<Row> {};

TEST_P(TalkKeyGuardOrder, whenKeysArePlayed_tellsExactly) {
    Keyboard keyboard;
    keyboard.play(GetParam().keys);
    EXPECT_EQ(keyboard.told(), GetParam().told);
}

const Row kRows[] = {
    // The talk key alone.
    {"downIsTouchedAtOnce", "T", "touched"},
    {"downIsHeldBackDuringTheGuard", "T 149ms", "touched"},
    {"downIsToldAtTheEndOfTheGuard", "T 150ms", "touched key:F"},
    {"heldAndReleased", "T 150ms 2000ms t", "touched key:F key:-"},
    {"tapIsDownAndUpInOrder", "T 40ms t", "touched key:F key:-"},
    {"tapEndsTheGuard", "T 40ms t 500ms", "touched key:F key:-"},
    {"twoTaps", "T 40ms t 10ms T 40ms t", "touched key:F key:- touched key:F key:-"},
    {"tapThenHold", "T 40ms t 120ms T 149ms", "touched key:F key:- touched"},
    {"repeatedDownCountsOnce", "T 10ms T 10ms T 150ms T t", "touched key:F key:-"},
    {"upWithoutDownIsNothing", "t", ""},
    {"secondUpIsNothing", "T 150ms t t", "touched key:F key:-"},

    // Another key.
    {"otherKeyDuringTheGuardDismisses", "T 50ms C", "touched dismissed"},
    {"nothingFollowsADismissal", "T 50ms C 500ms C t", "touched dismissed"},
    {"otherKeyAfterTheGuardChangesNothing", "T 150ms C t", "touched key:F key:-"},
    {"otherKeyAtTheVeryMomentOfTheDown", "T C 150ms t", "touched dismissed"},
    {"otherKeyBeforeTheDownChangesNothing", "C T 150ms", "touched key:F"},
    {"otherKeyAloneIsNothing", "C", ""},
    {"nextPressAfterADismissalCounts", "T 50ms C t T 150ms t", "touched dismissed touched key:F key:-"},
    {"secondOtherKeyDismissesOnce", "T C C", "touched dismissed"},

    // Shift alone.
    {"shiftAloneIsTold", "S s", "shift:S shift:-"},
    {"shiftToldOnceWhileHeld", "S S s s", "shift:S shift:-"},

    // Shift with the talk key.
    {"shiftAfterTheGuard", "T 150ms S", "touched key:F shift:FS"},
    {"shiftDuringTheGuardWaits", "T 50ms S 99ms", "touched"},
    {"shiftDuringTheGuardFollowsTheDown", "T 50ms S 100ms", "touched key:F shift:FS"},
    {"shiftTappedDuringTheGuard", "T 50ms S 50ms s 50ms", "touched key:F shift:FS shift:F"},
    {"bothTappedDuringTheGuard", "T 50ms S 50ms t", "touched key:F shift:FS key:S"},
    {"bothReleasedAfterwards", "T S 150ms s t", "touched key:F shift:FS shift:F key:-"},
    {"talkKeyReleasedFirst", "T S 150ms t s", "touched key:F shift:FS key:S shift:-"},
    {"shiftHeldBefore", "S T 150ms", "shift:S touched key:FS"},
    {"shiftHeldBeforeAndTapped", "S T 50ms t", "shift:S touched key:FS key:S"},
    {"shiftHeldBeforeReleasedDuringTheGuard", "S T 50ms s 100ms", "shift:S touched key:FS shift:F"},

    // Shortcuts that begin with the talk key and Shift.
    {"controlShiftC", "T 40ms S 40ms C 500ms s t", "touched dismissed shift:-"},
    {"shiftControlC", "S T 40ms C 500ms t s", "shift:S touched dismissed shift:-"},
    {"maskedTalkKeyWithShiftIsShiftAlone", "T C S s t", "touched dismissed shift:S shift:-"},

    // This program in front.
    {"pressInOurWindowIsNotSeen", "ours T 150ms t", ""},
    {"pressInOurWindowStaysUnseenElsewhere", "ours T others 150ms S s t", "shift:S shift:-"},
    {"shiftInOurWindowIsNotSeen", "ours S s", ""},
    {"shiftFromOurWindowIsRemembered", "ours S others T 150ms", "touched key:FS"},
    {"guardEndingInOurWindowDismisses", "T 50ms ours 100ms t", "touched dismissed"},
    {"tapEndingInOurWindowDismisses", "T 50ms ours t", "touched dismissed"},
    {"releaseOfAToldPressIsToldInOurWindow", "T 150ms ours t", "touched key:F key:-"},
    {"shiftInOurWindowIsNotSeenDuringATalk", "T 150ms ours S s t", "touched key:F key:-"},
    {"otherKeyInOurWindowDismisses", "T 50ms ours C", "touched dismissed"},

    // The main thread was busy, and the keys pressed meanwhile are still waiting when the timer fires.
    {"otherKeyWaitingAtTheEndOfTheGuard", "T busy C", "touched dismissed"},
    {"shiftWaitingAtTheEndOfTheGuard", "T busy S", "touched key:F shift:FS"},
    {"releaseWaitingAtTheEndOfTheGuard", "T busy t", "touched key:F key:-"},
    {"newPressWaitingAtTheEndOfTheGuard", "T busy t T", "touched key:F key:- touched"},
    {"shortcutWaitingAtTheEndOfTheGuard", "T busy C t T", "touched dismissed touched"},
};

INSTANTIATE_TEST_SUITE_P(Rows, TalkKeyGuardOrder, testing::ValuesIn(kRows), nameOfRow);

class TalkKeyWithoutGuardOrder : public testing::TestWithParam<Row> {};

TEST_P(TalkKeyWithoutGuardOrder, whenKeysArePlayed_tellsExactly) {
    Keyboard keyboard{Seconds::zero()};
    keyboard.play(GetParam().keys);
    EXPECT_EQ(keyboard.told(), GetParam().told);
    EXPECT_EQ(keyboard.timers(), 0U);
}

const Row kRowsWithoutGuard[] = {
    {"downIsToldAtOnce", "T", "touched key:F"},
    {"downAndUp", "T t", "touched key:F key:-"},
    {"otherKeyChangesNothing", "T C t", "touched key:F key:-"},
    {"shiftFollows", "T S s t", "touched key:F shift:FS shift:F key:-"},
    {"shiftHeldBefore", "S T t", "shift:S touched key:FS key:S"},
    {"pressInOurWindowIsNotSeen", "ours T t", ""},
};

INSTANTIATE_TEST_SUITE_P(Rows, TalkKeyWithoutGuardOrder, testing::ValuesIn(kRowsWithoutGuard), nameOfRow);

TEST(TalkKeyGuard, whenItEndsDuringTheGuard_tellsNothingMore) {
    ManualTime time;
    int notices = 0;
    {
        TalkKeyGuard guard(time, {[] { return true; }, {}});
        guard.setHandlers({.flagsChanged = [&](const FlagsChangedEvent&) { ++notices; },
                           .talkKeyTouched = {},
                           .talkKeyDismissed = {}});
        guard.talkKeyPressed(kGuardTime);
    }
    time.advance(Seconds(1));
    EXPECT_EQ(notices, 0);
}

TEST(TalkKeyGuard, whenNobodyListens_isHarmless) {
    ManualTime time;
    TalkKeyGuard guard(time, {[] { return true; }, {}});
    guard.talkKeyPressed(kGuardTime);
    guard.setShiftHeld(true);
    time.advance(kGuardTime);
    guard.talkKeyReleased();
    guard.talkKeyPressed(kGuardTime);
    guard.otherKeyPressed();
    EXPECT_TRUE(guard.isTalkKeyHeld());
}

TEST(TalkKeyGuard, whenMasked_theKeyIsStillHeld) {
    Keyboard keyboard;
    keyboard.play("T C");
    EXPECT_TRUE(keyboard.guard().isTalkKeyHeld());
    keyboard.play("t");
    EXPECT_FALSE(keyboard.guard().isTalkKeyHeld());
}

TEST(TalkKeyGuard, whenAGuardWasDismissed_leavesNoTimer) {
    Keyboard keyboard;
    keyboard.play("T C");
    EXPECT_EQ(keyboard.timers(), 0U);
}

} // namespace
} // namespace tovik
