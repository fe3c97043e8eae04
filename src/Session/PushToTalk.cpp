// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/PushToTalk.h"

#include "Permissions/PermissionRequests.h"
#include "Platform/Platform.h"
#include "Session/TranscriptDelivery.h"

namespace tovik {

namespace {

constexpr double kPanelHeight = 28;
constexpr double kGapBelowPanel = 2;
constexpr double kTipWidth = 284;
constexpr double kConfirmationWidth = 216;
constexpr double kNoticeWidth = 290;
constexpr double kLongNoticeWidth = 420;

constexpr Seconds kTipFadeIn{0.2};
constexpr Seconds kConfirmationFadeIn{0.15};
constexpr Seconds kFadeOut{0.15};
constexpr Seconds kConfirmationShown{1.6};
constexpr Seconds kNoticeShown{5.0};

} // namespace

HandsFreeHints::HandsFreeHints(MainQueue& queue, const Screens& screens, HintPanels& panels,
                               RecordingOverlay& overlay)
    : queue_(queue),
      screens_(screens),
      panels_(panels),
      overlay_(overlay) {}

HandsFreeHints::~HandsFreeHints() = default;

void HandsFreeHints::showLockTip() {
    if (lockTipWindow_) {
        return;
    }
    lockTipWindow_ = panels_.makePanel({.text = "Fn+Shift for hands-free · release Fn to stop",
                                        .frame = frameNearBottom(kTipWidth),
                                        .fontSize = 10.5,
                                        .weight = FontWeight::medium,
                                        .textWhite = 0.82});
    lockTipWindow_->fadeIn(kTipFadeIn);
}

void HandsFreeHints::hideLockTip() {
    if (!lockTipWindow_) {
        return;
    }
    // The panel stays ours until it is gone, so that no second tip can appear over one that fades.
    lockTipWindow_->fadeOut(kFadeOut, lifetime_.guard([this] { lockTipWindow_.reset(); }));
}

void HandsFreeHints::showLockConfirmation() {
    showForAWhile("Hands-free · Fn+Shift to finish", kConfirmationWidth, kConfirmationShown);
    overlay_.tovik();
}

void HandsFreeHints::showNotPasted(bool isOnClipboard) {
    if (isOnClipboard) {
        showForAWhile("Not pasted · the text is on the clipboard and in the history", kLongNoticeWidth,
                      kNoticeShown);
    } else {
        showForAWhile("Not pasted · the text is in the history", kNoticeWidth, kNoticeShown);
    }
}

void HandsFreeHints::showForAWhile(const std::string& text, double width, Seconds duration) {
    auto& panel = shown_.emplace_back(panels_.makePanel({.text = text,
                                                         .frame = frameNearBottom(width),
                                                         .fontSize = 12,
                                                         .weight = FontWeight::semibold,
                                                         .textWhite = 0.86}));
    panel->fadeIn(kConfirmationFadeIn);
    queue_.asyncAfter(
        duration, lifetime_.guard([this, position = std::prev(shown_.end())] { fadeOutShown(position); }));
}

void HandsFreeHints::fadeOutShown(Panels::iterator panel) {
    (*panel)->fadeOut(kFadeOut, lifetime_.guard([this, panel] { shown_.erase(panel); }));
}

Rect HandsFreeHints::frameNearBottom(double width) const {
    const auto screen = screens_.mainScreen();
    if (!screen) {
        return {0, 0, width, kPanelHeight};
    }
    return {screen->frame.x + (screen->frame.width - width) * 0.5,
            screen->visibleFrame.bottom() - kGapBelowPanel - kPanelHeight, width, kPanelHeight};
}

namespace {

constexpr Seconds kLockTipDelay{2.0};

} // namespace

StatusImage statusBarAppIcon(const std::string& accessibilityDescription) {
    return {.kind = StatusImage::Kind::applicationIcon,
            .symbolName = "AppIcon",
            .accessibilityDescription = accessibilityDescription,
            .pointSize = 18};
}

StatusImage statusBarRecordingSymbol() {
    return {.kind = StatusImage::Kind::symbol,
            .symbolName = "waveform",
            .accessibilityDescription = "Recording",
            .pointSize = 13};
}

PushToTalk::PushToTalk(const Platform& platform, PermissionRequests& permissionRequests,
                       TargetTracker& targets, Recorder& recorder, StatusItem& statusItem,
                       RecordingOverlay& overlay)
    : platform_(platform),
      permissionRequests_(permissionRequests),
      targets_(targets),
      recorder_(recorder),
      statusItem_(statusItem),
      overlay_(overlay),
      hintPanels_(platform.userInterface.makeHintPanels()),
      hints_(platform.mainQueue, platform.screens, *hintPanels_, overlay),
      captureState_(platform.files, platform.clock, platform.log, platform.dataFolder,
                    platform.processIdentifier),
      pasteGivenUp_(platform.keyEventPoster.givenUp.add(
          [this](bool isOnClipboard) { hints_.showNotPasted(isOnClipboard); })) {}

void PushToTalk::close() {
    isClosed_ = true;
    overlay_.hide();
}

void PushToTalk::handleFlagsChanged(const FlagsChangedEvent& event) {
    if (isClosed_) {
        return;
    }
    advance(event);
    if (!isRecording()) {
        // Whatever the key meant, no recording came of it: the microphone that talkKeyTouched() opened must
        // not stay open.
        recorder_.closeAhead();
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
    platform_.log.printLine("[TovikVoice] Recording locked — hands-free mode");
    lockTipTimer_.end();
    hints_.hideLockTip();
    hints_.showLockConfirmation();
}

void PushToTalk::talkKeyTouched(Seconds ago) {
    if (!isClosed_ && !isRecording() &&
        platform_.authorization.microphoneStatus() == MicrophoneStatus::authorized) {
        recorder_.openAhead(ago);
    }
}

void PushToTalk::talkKeyDismissed() {
    if (!isClosed_ && !isRecording()) {
        recorder_.closeAhead();
    }
}

void PushToTalk::startRecording() {
    if (!permissionRequests_.ensureRecordingPermissionsBeforeStart()) {
        return;
    }
    targets_.chooseTarget();
    state_ = State::holding;
    const auto now = platform_.clock.now();
    recordingStartTime_ = now;
    tovikCaptureStartedAt_ = now;
    platform_.log.printLine("[TovikVoice] Recording started!");
    statusItem_.setImage(statusBarRecordingSymbol());
    overlay_.show(now);

    if (const auto started = recorder_.start(); !started) {
        abandonStart(started.error());
        return;
    }
    captureState_.writeTovikCaptureState(true, tovikCaptureStartedAt_);
    lockTipTimer_ = platform_.mainQueue.after(kLockTipDelay, [this] {
        if (state_ == State::holding) {
            hints_.showLockTip();
        }
    });
}

void PushToTalk::abandonStart(const Error& error) {
    // The overlay and the recording picture stay: they show that a recording was asked for, and the next
    // successful stop takes them away.
    state_ = State::idle;
    recordingStartTime_.reset();
    tovikCaptureStartedAt_.reset();
    captureState_.writeTovikCaptureState(false);
    platform_.log.printLine("[TovikVoice] Failed to start recorder: " + error.description);
}

void PushToTalk::restartRecording() {
    if (isClosed_ || !isRecording()) {
        return;
    }
    finishRecording(&Recorder::stopAndListenOn);
    startRecording();
    if (!isRecording()) {
        recorder_.closeAhead();
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
    hints_.hideLockTip();
    platform_.log.printLine("[TovikVoice] Recording stopped!");
    statusItem_.setImage(statusBarAppIcon("Tovik Record"));
    overlay_.hide();
    (recorder_.*stop)();
    captureState_.writeTovikCaptureState(false);
}

} // namespace tovik
