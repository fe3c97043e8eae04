// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Audio/Recorder.h"
#include "Platform/Keyboard.h"
#include "Platform/MainQueue.h"
#include "Platform/Screens.h"
#include "Platform/Subscription.h"
#include "Platform/UserInterface.h"
#include "Session/SessionFiles.h"

#include <list>
#include <memory>
#include <optional>
#include <string>

namespace tovik {

/// The small panels near the bottom of the screen: the tip that offers hands-free recording, the confirmation
/// that it is on, and the notice that a text was not pasted. Main thread.
class HandsFreeHints {
public:
    HandsFreeHints(MainQueue& queue, const Screens& screens, HintPanels& panels, RecordingOverlay& overlay);
    ~HandsFreeHints();

    /// Does nothing while a tip is on screen, one that fades out included.
    void showLockTip();
    void hideLockTip();

    /// Every call shows a panel of its own, which goes by itself; the overlay beats once.
    void showLockConfirmation();
    /// As does this; the overlay stays as it is.
    void showNotPasted(bool isOnClipboard);

private:
    using Panels = std::list<std::unique_ptr<HintPanel>>;

    [[nodiscard]] Rect frameNearBottom(double width) const;
    void showForAWhile(const std::string& text, double width, Seconds duration);
    void fadeOutShown(Panels::iterator panel);

    MainQueue& queue_;
    const Screens& screens_;
    HintPanels& panels_;
    RecordingOverlay& overlay_;
    std::unique_ptr<HintPanel> lockTipWindow_;
    Panels shown_;
    Lifetime lifetime_;
};

class PermissionRequests;
class TargetTracker;
struct Platform;

/// The status item's picture while no recording runs.
[[nodiscard]] StatusImage statusBarAppIcon(const std::string& accessibilityDescription);
/// The status item's picture during a recording.
[[nodiscard]] StatusImage statusBarRecordingSymbol();

/// Turns the talk key into recordings: hold to record, with Shift to go on hands-free, with Shift again to
/// finish. Main thread.
class PushToTalk {
public:
    PushToTalk(const Platform& platform, PermissionRequests& permissionRequests, TargetTracker& targets,
               Recorder& recorder, StatusItem& statusItem, RecordingOverlay& overlay);

    /// One change of a modifier key.
    void handleFlagsChanged(const FlagsChangedEvent& event);

    /// The talk key went down, and whether that is a dictation is not known yet: the microphone listens
    /// already, so that a word spoken meanwhile is part of the recording.
    void talkKeyTouched(Seconds ago);
    /// It was not.
    void talkKeyDismissed();

    void startRecording();
    void stopRecording();
    /// Ends the running recording, whose text is delivered as usual, and begins another, which misses nothing
    /// of what is spoken in between; nothing while idle.
    void restartRecording();

    /// The program is about to end: from now on no key, and no change of the language, begins or ends one.
    /// Whoever reads the state file of one that runs learns the rest from the end of this process.
    void close();

    [[nodiscard]] bool isRecording() const { return state_ != State::idle; }
    [[nodiscard]] bool isRecordingLocked() const { return state_ == State::locked; }
    [[nodiscard]] bool fnDown() const { return fnDown_; }
    [[nodiscard]] const std::optional<Date>& recordingStartTime() const { return recordingStartTime_; }

private:
    enum class State { idle, holding, locked };

    void advance(const FlagsChangedEvent& event);
    void lockOrStop();
    void abandonStart(const Error& error);
    void finishRecording(void (Recorder::*stop)());

    const Platform& platform_;
    PermissionRequests& permissionRequests_;
    TargetTracker& targets_;
    Recorder& recorder_;
    StatusItem& statusItem_;
    RecordingOverlay& overlay_;
    const std::unique_ptr<HintPanels> hintPanels_;
    HandsFreeHints hints_;
    CaptureStateFile captureState_;

    bool isClosed_ = false;
    State state_ = State::idle;
    bool fnDown_ = false;
    std::optional<Date> recordingStartTime_;
    std::optional<Date> tovikCaptureStartedAt_;
    Subscription lockTipTimer_;
    Subscription pasteGivenUp_;
};

} // namespace tovik
