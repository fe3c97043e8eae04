// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Audio/Recorder.h"
#include "Platform/Authorization.h"
#include "Platform/KeyMonitor.h"
#include "Platform/MainQueue.h"
#include "Platform/MainWindow.h"
#include "Platform/RecordingOverlay.h"
#include "Platform/StatusItem.h"
#include "Platform/SystemLog.h"
#include "Session/CaptureStateFile.h"
#include "Session/HandsFreeHints.h"
#include "Session/TargetTracker.h"

#include <optional>

namespace tovik {

class PermissionRequests;

/// Turns the talk key into recordings: hold to record, with Shift to go on hands-free, with Shift again to
/// finish. Main thread.
class PushToTalk {
public:
    /// What a recording touches while it begins, runs and ends.
    struct Collaborators {
        Clock& clock;
        MainQueue& queue;
        SystemLog& log;
        Recorder& recorder;
        Authorization& authorization;
        PermissionRequests& permissionRequests;
        MainWindow& mainWindow;
        StatusItem& statusItem;
        RecordingOverlay& overlay;
        HandsFreeHints& hints;
        TargetTracker& targets;
        CaptureStateFile& captureState;
    };

    explicit PushToTalk(const Collaborators& collaborators);

    /// One change of a modifier key.
    void handleFlagsChanged(const FlagsChangedEvent& event);

    /// The talk key went down, and whether that is a dictation is not known yet: the microphone listens
    /// already, so that a word spoken meanwhile is part of the recording.
    void talkKeyTouched();
    /// It was not.
    void talkKeyDismissed();

    void startRecording();
    void stopRecording();
    /// Ends the running recording, whose text is delivered as usual, and begins another, which misses nothing
    /// of what is spoken in between; nothing while idle.
    void restartRecording();

    [[nodiscard]] bool isRecording() const { return state_ != State::idle; }
    [[nodiscard]] bool isRecordingLocked() const { return state_ == State::locked; }
    [[nodiscard]] bool fnDown() const { return fnDown_; }
    [[nodiscard]] const std::optional<Date>& recordingStartTime() const { return recordingStartTime_; }

private:
    enum class State { idle, holding, locked };

    void advance(const FlagsChangedEvent& event);
    void lockOrStop();
    [[nodiscard]] bool ensureRecordingPermissionsBeforeStart();
    void abandonStart(const Error& error);
    void finishRecording(void (Recorder::*stop)());

    Collaborators with_;
    State state_ = State::idle;
    bool fnDown_ = false;
    std::optional<Date> recordingStartTime_;
    std::optional<Date> tovikCaptureStartedAt_;
    Subscription lockTipTimer_;
};

} // namespace tovik
