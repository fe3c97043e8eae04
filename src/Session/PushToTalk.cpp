// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/PushToTalk.h"

#include "Permissions/PermissionRequests.h"
#include "Session/StatusImages.h"

namespace tovik {

namespace {

constexpr Seconds kLockTipDelay{2.0};
constexpr int kAuthorized = 3;

} // namespace

PushToTalk::PushToTalk(const Collaborators& collaborators) : with_(collaborators) {}

void PushToTalk::handleFlagsChanged(const FlagsChangedEvent& event) {
    advance(event);
    if (!isRecording()) {
        // Whatever the key meant, no recording came of it: the microphone that talkKeyTouched() opened must
        // not stay open.
        with_.recorder.closeAhead();
    }
}

void PushToTalk::advance(const FlagsChangedEvent& event) {
    constexpr auto both = kFunctionFlag | kShiftFlag;
    if ((event.modifierFlags & both) == both) {
        lockOrStop();
        return;
    }
    if (event.keyCode != kFunctionKeyCode) {
        return;
    }
    const bool isDown = (event.modifierFlags & kFunctionFlag) != 0;
    if (isDown == fnDown_) {
        return;
    }
    fnDown_ = isDown;
    if (isDown && state_ == State::idle) {
        startRecording();
    } else if (!isDown && state_ == State::holding) {
        stopRecording();
    }
}

void PushToTalk::lockOrStop() {
    if (state_ == State::locked) {
        stopRecording();
        return;
    }
    if (state_ == State::idle) {
        startRecording();
        if (state_ == State::idle) {
            return;
        }
    }
    state_ = State::locked;
    with_.log.printLine("[TovikVoice] Recording locked — hands-free mode");
    lockTipTimer_.end();
    with_.hints.hideLockTip();
    with_.hints.showLockConfirmation();
}

void PushToTalk::talkKeyTouched() {
    if (!isRecording() && with_.authorization.microphoneStatus() == kAuthorized) {
        with_.recorder.openAhead();
    }
}

void PushToTalk::talkKeyDismissed() {
    if (!isRecording()) {
        with_.recorder.closeAhead();
    }
}

bool PushToTalk::ensureRecordingPermissionsBeforeStart() {
    if (with_.authorization.microphoneStatus() != kAuthorized) {
        with_.permissionRequests.requestMicrophonePermission();
        with_.mainWindow.present();
        with_.mainWindow.showSavedToast("Grant microphone first");
        return false;
    }
    if (with_.authorization.speechStatus() != kAuthorized) {
        with_.permissionRequests.requestSpeechPermission();
        with_.mainWindow.present();
        with_.mainWindow.showSavedToast("Grant speech first");
        return false;
    }
    return true;
}

void PushToTalk::startRecording() {
    if (!ensureRecordingPermissionsBeforeStart()) {
        return;
    }
    with_.targets.chooseTarget();
    state_ = State::holding;
    const auto now = with_.clock.now();
    recordingStartTime_ = now;
    tovikCaptureStartedAt_ = now;
    with_.log.printLine("[TovikVoice] Recording started!");
    with_.statusItem.setImage(statusBarRecordingSymbol());
    with_.overlay.show(now);

    if (const auto started = with_.recorder.start(); !started) {
        abandonStart(started.error());
        return;
    }
    with_.captureState.writeTovikCaptureState(true, tovikCaptureStartedAt_);
    lockTipTimer_ = with_.queue.after(kLockTipDelay, [this] {
        if (state_ == State::holding) {
            with_.hints.showLockTip();
        }
    });
}

void PushToTalk::abandonStart(const Error& error) {
    // The overlay and the recording picture stay: they show that a recording was asked for, and the next
    // successful stop takes them away.
    state_ = State::idle;
    recordingStartTime_.reset();
    tovikCaptureStartedAt_.reset();
    with_.captureState.writeTovikCaptureState(false);
    with_.log.printLine("[TovikVoice] Failed to start recorder: " + error.description);
}

void PushToTalk::restartRecording() {
    if (!isRecording()) {
        return;
    }
    finishRecording(&Recorder::stopAndListenOn);
    startRecording();
    if (!isRecording()) {
        with_.recorder.closeAhead();
    }
}

void PushToTalk::stopRecording() {
    finishRecording(&Recorder::stop);
}

void PushToTalk::finishRecording(void (Recorder::*stop)()) {
    state_ = State::idle;
    recordingStartTime_.reset();
    tovikCaptureStartedAt_.reset();
    lockTipTimer_.end();
    with_.hints.hideLockTip();
    with_.log.printLine("[TovikVoice] Recording stopped!");
    with_.statusItem.setImage(statusBarAppIcon("Tovik Record"));
    with_.overlay.hide();
    (with_.recorder.*stop)();
    with_.captureState.writeTovikCaptureState(false);
}

} // namespace tovik
