// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/PushToTalk.h"

#include "unit/Session/SessionFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t kNone = 0;
constexpr std::uint64_t kBoth = kFunctionFlag | kShiftFlag;
constexpr auto kStatePath = "/home/ada/.local/share/Tovik/capture-state.json";

const FlagsChangedEvent fnDown{kFunctionFlag, kFunctionKeyCode};
const FlagsChangedEvent fnUp{kNone, kFunctionKeyCode};
const FlagsChangedEvent shiftDownWithFn{kBoth, kShiftKeyCode};
const FlagsChangedEvent shiftUpWithFn{kFunctionFlag, kShiftKeyCode};
const FlagsChangedEvent shiftDownAlone{kShiftFlag, kShiftKeyCode};
const FlagsChangedEvent fnDownWithShift{kBoth, kFunctionKeyCode};
const FlagsChangedEvent fnUpWithShift{kShiftFlag, kFunctionKeyCode};

class PushToTalkTest : public test::SessionFixture {
protected:
    PushToTalkTest() {
        recorder.onCall = [this](const std::string& call) { noteRecorderCall(call); };
    }

    void send(std::initializer_list<FlagsChangedEvent> events) {
        for (const auto& event : events) {
            pushToTalk.handleFlagsChanged(event);
        }
    }

    /// start and stop calls only: the early microphone has tests of its own.
    std::vector<std::string> recordings;

    PushToTalk pushToTalk{platform, permissionRequests, targets, recorder, statusItem, overlay};
    test::FakeHintPanels& hintPanels = *userInterface.hintPanels;

private:
    void noteRecorderCall(const std::string& call) {
        if (call == "start" || call.starts_with("stop")) {
            recordings.push_back(call);
        }
    }
};

// The key state machine.

struct KeyRow {
    const char* name;
    std::vector<FlagsChangedEvent> events;
    std::vector<std::string> recordings;
    bool isRecording;
    bool isLocked;
    bool fnDown;
};

class PushToTalkKeys : public PushToTalkTest, public testing::WithParamInterface<KeyRow> {};

TEST_P(PushToTalkKeys, leadToRecordings) {
    for (const auto& event : GetParam().events) {
        pushToTalk.handleFlagsChanged(event);
    }
    EXPECT_EQ(recordings, GetParam().recordings);
    EXPECT_EQ(pushToTalk.isRecording(), GetParam().isRecording);
    EXPECT_EQ(pushToTalk.isRecordingLocked(), GetParam().isLocked);
    EXPECT_EQ(pushToTalk.fnDown(), GetParam().fnDown);
}

using Events = std::vector<FlagsChangedEvent>;
using Calls = std::vector<std::string>;

INSTANTIATE_TEST_SUITE_P(
    Rows, PushToTalkKeys,
    testing::Values(
        KeyRow{"fnDown_starts", Events{fnDown}, Calls{"start"}, true, false, true},
        KeyRow{"fnDownUp_isOneRecording", Events{fnDown, fnUp}, Calls{"start", "stop"}, false, false, false},
        KeyRow{"fnDownTwice_isARepeat", Events{fnDown, fnDown}, Calls{"start"}, true, false, true},
        KeyRow{"fnUpAlone_isNothing", Events{fnUp}, Calls{}, false, false, false},
        KeyRow{"shiftAlone_isNothing", Events{shiftDownAlone}, Calls{}, false, false, false},
        KeyRow{"otherKeyWithTheFnFlag_isNothing", Events{{kFunctionFlag, 55}}, Calls{}, false, false, false},
        KeyRow{"shiftDuringTheHold_locks", Events{fnDown, shiftDownWithFn}, Calls{"start"}, true, true, true},
        KeyRow{"releasingShiftThenFn_leavesItLocked", Events{fnDown, shiftDownWithFn, shiftUpWithFn, fnUp},
               Calls{"start"}, true, true, false},
        KeyRow{"releasingFnThenShift_leavesItLocked",
               Events{fnDown, shiftDownWithFn, fnUpWithShift, {kNone, kShiftKeyCode}}, Calls{"start"}, true,
               true, false},
        KeyRow{"fnAlone_doesNotStopALockedRecording",
               Events{fnDown, shiftDownWithFn, shiftUpWithFn, fnUp, fnDown, fnUp}, Calls{"start"}, true, true,
               false},
        KeyRow{"fnShiftAgain_stopsALockedRecording",
               Events{fnDown, shiftDownWithFn, shiftUpWithFn, fnUp, fnDown, shiftDownWithFn},
               Calls{"start", "stop"}, false, false, true},
        KeyRow{"fnUpAfterAFnShiftStop_isNothing",
               Events{fnDown, shiftDownWithFn, shiftUpWithFn, fnUp, fnDown, shiftDownWithFn, shiftUpWithFn,
                      fnUp},
               Calls{"start", "stop"}, false, false, false},
        KeyRow{"shiftHeldThenFn_startsAndLocksAtOnce", Events{shiftDownAlone, fnDownWithShift},
               Calls{"start"}, true, true, false},
        KeyRow{"thirdModifierAfterAFnShiftStop_startsAndLocksAnew",
               Events{fnDownWithShift, {kBoth, kShiftKeyCode}, {kBoth, 59}}, Calls{"start", "stop", "start"},
               true, true, false},
        KeyRow{"fnDownWhileRecordingAfterAMissedRelease_changesOnlyTheKeyState",
               Events{fnDownWithShift, fnDown}, Calls{"start"}, true, true, true}),
    [](const auto& row) { return std::string(row.param.name); });

// The beginning of a recording.

TEST_F(PushToTalkTest, start_makesTheFrontmostApplicationTheTarget) {
    workspace.bringToFront(editor);
    pushToTalk.startRecording();
    EXPECT_EQ(targets.targetApp(), editor);
}

TEST_F(PushToTalkTest, startWhileThisProgramIsInFront_takesTheLastFocusedApplication) {
    targets.startFollowing();
    workspace.bringToFront(editor);
    workspace.bringToFront(workspace.current);
    pushToTalk.startRecording();
    EXPECT_EQ(targets.targetApp(), editor);
}

TEST_F(PushToTalkTest, start_showsTheRecordingEverywhere) {
    pushToTalk.startRecording();
    EXPECT_EQ(log.printed(), Calls{"[TovikVoice] Recording started!"});
    EXPECT_EQ(statusItem.image(), (StatusImage{StatusImage::Kind::symbol, "waveform", "Recording", 13}));
    EXPECT_THAT(overlay.calls, ElementsAre("show"));
    EXPECT_THAT(overlay.shownSince, ElementsAre(time.now()));
    EXPECT_EQ(pushToTalk.recordingStartTime(), time.now());
    EXPECT_TRUE(files.exists(kStatePath));
}

TEST_F(PushToTalkTest, start_opensTheMicrophoneAfterTheOverlayAndWritesTheStateFileLast) {
    int starts = 0;
    recorder.onCall = [&](const std::string& call) {
        if (call == "start") {
            ++starts;
            EXPECT_THAT(overlay.calls, ElementsAre("show"));
            EXPECT_FALSE(files.exists(kStatePath));
        }
    };
    pushToTalk.startRecording();
    EXPECT_EQ(starts, 1);
    EXPECT_TRUE(files.exists(kStatePath));
}

TEST_F(PushToTalkTest, stateFile_carriesTheStartOfTheRecording) {
    pushToTalk.startRecording();
    EXPECT_THAT(*files.contentOf(kStatePath), testing::HasSubstr(R"("startedAt": "2025-03-01T14:05:09Z")"));
}

// The end of a recording.

TEST_F(PushToTalkTest, stop_takesEverythingBackAtOnce) {
    pushToTalk.startRecording();
    pushToTalk.stopRecording();
    EXPECT_THAT(log.printed(),
                ElementsAre("[TovikVoice] Recording started!", "[TovikVoice] Recording stopped!"));
    EXPECT_EQ(statusItem.image(),
              (StatusImage{StatusImage::Kind::applicationIcon, "AppIcon", "Tovik Record", 18}));
    EXPECT_THAT(overlay.calls, ElementsAre("show", "hide"));
    EXPECT_THAT(recordings, ElementsAre("start", "stop"));
    EXPECT_FALSE(files.exists(kStatePath));
    EXPECT_EQ(pushToTalk.recordingStartTime(), std::nullopt);
}

TEST_F(PushToTalkTest, stop_hidesTheOverlayBeforeTheRecorderPausesAndRemovesTheStateFileAfter) {
    pushToTalk.startRecording();
    int stops = 0;
    recorder.onCall = [&](const std::string& call) {
        if (call == "stop") {
            ++stops;
            EXPECT_THAT(overlay.calls, ElementsAre("show", "hide"));
            EXPECT_TRUE(files.exists(kStatePath));
        }
    };
    pushToTalk.stopRecording();
    EXPECT_EQ(stops, 1);
    EXPECT_FALSE(files.exists(kStatePath));
}

TEST_F(PushToTalkTest, aTapOfNoLength_isARecording) {
    send({fnDown, fnUp});
    EXPECT_THAT(recordings, ElementsAre("start", "stop"));
    EXPECT_TRUE(time.pauses().empty());
}

TEST_F(PushToTalkTest, restart_endsTheRunningRecordingAndBeginsAnother) {
    send({fnDown, shiftDownWithFn});
    pushToTalk.restartRecording();
    EXPECT_THAT(recordings, ElementsAre("start", "stopAndListenOn", "start"));
    EXPECT_TRUE(pushToTalk.isRecording());
    EXPECT_FALSE(pushToTalk.isRecordingLocked());
}

TEST_F(PushToTalkTest, restartThatIsRefused_leavesTheMicrophoneClosed) {
    send({fnDown});
    authorization.setSpeechStatus(0);
    pushToTalk.restartRecording();
    EXPECT_FALSE(pushToTalk.isRecording());
    EXPECT_EQ(recorder.calls.back(), "closeAhead");
}

TEST_F(PushToTalkTest, restartWhileIdle_doesNothing) {
    pushToTalk.restartRecording();
    EXPECT_THAT(recordings, IsEmpty());
}

// Permissions.

TEST_F(PushToTalkTest, withoutTheMicrophone_asksForItAndRecordsNothing) {
    authorization.setMicrophoneStatus(0);
    send({fnDown});
    EXPECT_EQ(authorization.openMicrophoneRequests(), 1u);
    EXPECT_THAT(mainWindow.calls(), ElementsAre("present", "toast: Grant microphone first"));
    EXPECT_THAT(recordings, IsEmpty());
    EXPECT_FALSE(pushToTalk.isRecording());
    EXPECT_TRUE(pushToTalk.fnDown());
    EXPECT_THAT(overlay.calls, IsEmpty());
    EXPECT_THAT(log.printed(), IsEmpty());
}

TEST_F(PushToTalkTest, withoutSpeechRecognition_asksForItAndRecordsNothing) {
    authorization.setSpeechStatus(0);
    send({fnDown});
    EXPECT_EQ(authorization.openSpeechRequests(), 1u);
    EXPECT_EQ(authorization.openMicrophoneRequests(), 0u);
    EXPECT_THAT(mainWindow.calls(), ElementsAre("present", "toast: Grant speech first"));
    EXPECT_THAT(recordings, IsEmpty());
}

TEST_F(PushToTalkTest, withoutEither_asksForTheMicrophoneFirst) {
    authorization.setMicrophoneStatus(0);
    authorization.setSpeechStatus(0);
    send({fnDown});
    EXPECT_EQ(authorization.openMicrophoneRequests(), 1u);
    EXPECT_EQ(authorization.openSpeechRequests(), 0u);
}

TEST_F(PushToTalkTest, withoutAccessibility_recordsAllTheSame) {
    authorization.setTrusted(false);
    send({fnDown});
    EXPECT_TRUE(pushToTalk.isRecording());
}

TEST_F(PushToTalkTest, whenThePermissionGateRefusesAFnShiftStart_nothingIsLocked) {
    authorization.setMicrophoneStatus(2);
    send({fnDownWithShift});
    EXPECT_FALSE(pushToTalk.isRecording());
    EXPECT_FALSE(pushToTalk.isRecordingLocked());
    EXPECT_TRUE(hintPanels.panels.empty());
}

TEST_F(PushToTalkTest, refusedStart_leavesTheTargetAlone) {
    workspace.bringToFront(editor);
    authorization.setMicrophoneStatus(2);
    pushToTalk.startRecording();
    EXPECT_EQ(targets.targetApp(), std::nullopt);
}

// A recorder that fails.

TEST_F(PushToTalkTest, whenTheRecorderFails_theSessionIsIdleAgainButKeepsItsRecordingLook) {
    recorder.failure = Error{"PulseAudio", 6, "No sound server answers."};
    send({fnDown});
    EXPECT_FALSE(pushToTalk.isRecording());
    EXPECT_EQ(pushToTalk.recordingStartTime(), std::nullopt);
    EXPECT_FALSE(files.exists(kStatePath));
    EXPECT_THAT(log.printed(),
                ElementsAre("[TovikVoice] Recording started!",
                            "[TovikVoice] Failed to start recorder: No sound server answers."));
    EXPECT_THAT(overlay.calls, ElementsAre("show"));
    EXPECT_EQ(statusItem.image()->symbolName, "waveform");
    time.advance(Seconds(5));
    EXPECT_TRUE(hintPanels.panels.empty());
}

TEST_F(PushToTalkTest, afterAFailedStart_keyUpDoesNothingAndTheNextKeyDownTriesAgain) {
    recorder.failure = Error{"PulseAudio", 6, "No sound server answers."};
    send({fnDown, fnUp});
    EXPECT_THAT(recordings, ElementsAre("start"));
    recorder.failure.reset();
    send({fnDown});
    EXPECT_TRUE(pushToTalk.isRecording());
    send({fnUp});
    EXPECT_THAT(overlay.calls, ElementsAre("show", "show", "hide"));
}

TEST_F(PushToTalkTest, whenAFnShiftStartFails_nothingIsLocked) {
    recorder.failure = Error{"PulseAudio", 6, "No sound server answers."};
    send({fnDownWithShift});
    EXPECT_FALSE(pushToTalk.isRecordingLocked());
    EXPECT_TRUE(hintPanels.panels.empty());
}

TEST_F(PushToTalkTest, whenTheStateFileCannotBeWritten_theRecordingGoesOn) {
    files.fail(Error{"POSIX", 28, "No space left on device"});
    send({fnDown});
    EXPECT_TRUE(pushToTalk.isRecording());
    EXPECT_THAT(log.printed(),
                testing::Contains("[TovikVoice] Failed to write capture state: No space left on device"));
}

// Hands-free hints.

TEST_F(PushToTalkTest, afterTwoSecondsOfHolding_theTipAppearsOnce) {
    send({fnDown});
    time.advance(Seconds(1.99));
    EXPECT_TRUE(hintPanels.panels.empty());
    time.advance(Seconds(0.01));
    ASSERT_EQ(hintPanels.panels.size(), 1u);
    EXPECT_EQ(hintPanels.panels[0]->description.text, "Fn+Shift for hands-free · release Fn to stop");
    time.advance(Seconds(10));
    EXPECT_EQ(hintPanels.panels.size(), 1u);
    EXPECT_TRUE(pushToTalk.isRecording());
}

TEST_F(PushToTalkTest, whenStoppedWithinTwoSeconds_noTipAppears) {
    send({fnDown, fnUp});
    time.advance(Seconds(3));
    EXPECT_TRUE(hintPanels.panels.empty());
}

TEST_F(PushToTalkTest, aNewRecording_hasTwoSecondsOfItsOwn) {
    send({fnDown});
    time.advance(Seconds(1.5));
    send({fnUp, fnDown});
    time.advance(Seconds(1.5));
    EXPECT_TRUE(hintPanels.panels.empty());
    time.advance(Seconds(0.5));
    EXPECT_EQ(hintPanels.panels.size(), 1u);
}

TEST_F(PushToTalkTest, whenLocked_onlyTheConfirmationAppears) {
    send({fnDown, shiftDownWithFn});
    time.advance(Seconds(3));
    ASSERT_EQ(hintPanels.panels.size(), 1u);
    EXPECT_EQ(hintPanels.panels[0]->description.text, "Hands-free · Fn+Shift to finish");
    EXPECT_THAT(overlay.calls, ElementsAre("show", "tovik"));
    EXPECT_THAT(log.printed(), ElementsAre("[TovikVoice] Recording started!",
                                           "[TovikVoice] Recording locked — hands-free mode"));
}

TEST_F(PushToTalkTest, whenLockedWhileTheTipShows_theTipFadesOut) {
    send({fnDown});
    time.advance(Seconds(2));
    send({shiftDownWithFn});
    EXPECT_EQ(hintPanels.panels[0]->fadeOuts.size(), 1u);
}

TEST_F(PushToTalkTest, whenStoppedWhileTheTipShows_theTipFadesOut) {
    send({fnDown});
    time.advance(Seconds(2));
    send({fnUp});
    EXPECT_EQ(hintPanels.panels[0]->fadeOuts.size(), 1u);
}

TEST_F(PushToTalkTest, whenAPasteIsGivenUp_theUserIsTold) {
    poster.givenUp.tell(false);
    ASSERT_EQ(hintPanels.panels.size(), 1u);
    EXPECT_TRUE(hintPanels.panels[0]->isOnScreen);
    EXPECT_EQ(hintPanels.panels[0]->description.text, "Not pasted · the text is in the history");
}

// The early microphone.

TEST_F(PushToTalkTest, whenTheTalkKeyIsTouched_theMicrophoneOpensBeforeTheRecordingBegins) {
    pushToTalk.talkKeyTouched(Seconds(0));
    send({fnDown});
    EXPECT_THAT(recorder.calls, ElementsAre("openAhead", "start"));
}

TEST_F(PushToTalkTest, whenTheTalkKeyBelongsToAnotherShortcut_theMicrophoneClosesAndNothingIsRecorded) {
    pushToTalk.talkKeyTouched(Seconds(0));
    pushToTalk.talkKeyDismissed();
    EXPECT_THAT(recorder.calls, ElementsAre("openAhead", "closeAhead"));
    EXPECT_FALSE(pushToTalk.isRecording());
}

TEST_F(PushToTalkTest, withoutTheMicrophonePermission_aTouchOpensNothing) {
    authorization.setMicrophoneStatus(2);
    pushToTalk.talkKeyTouched(Seconds(0));
    EXPECT_THAT(recorder.calls, IsEmpty());
}

TEST_F(PushToTalkTest, whenTheTouchLeadsToNoRecording_theMicrophoneIsClosed) {
    authorization.setSpeechStatus(0);
    pushToTalk.talkKeyTouched(Seconds(0));
    send({fnDown});
    EXPECT_THAT(recorder.calls, ElementsAre("openAhead", "closeAhead"));
}

TEST_F(PushToTalkTest, duringALockedRecording_touchingAndDismissingLeaveTheMicrophoneAlone) {
    send({fnDown, shiftDownWithFn, fnUp});
    pushToTalk.talkKeyTouched(Seconds(0));
    pushToTalk.talkKeyDismissed();
    EXPECT_THAT(recorder.calls, ElementsAre("start"));
}

} // namespace
} // namespace tovik
