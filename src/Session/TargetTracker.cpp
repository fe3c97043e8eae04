// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/TargetTracker.h"

namespace tovik {

TargetTracker::TargetTracker(Workspace& workspace) : workspace_(workspace) {}

void TargetTracker::startFollowing() {
    if (const auto frontmost = workspace_.frontmostApplication(); frontmost && !isTovikVoice(*frontmost)) {
        lastFocusedTargetApp_ = frontmost;
    }
    workspaceObserver_ = workspace_.onActivation([this](const RunningApplication& activated) {
        if (!isTovikVoice(activated)) {
            lastFocusedTargetApp_ = activated;
        }
    });
}

void TargetTracker::chooseTarget() {
    const auto frontmost = workspace_.frontmostApplication();
    targetApp_ = frontmost && !isTovikVoice(*frontmost) ? frontmost : lastFocusedTargetApp();
    if (targetApp_) {
        lastFocusedTargetApp_ = targetApp_;
    }
}

std::optional<RunningApplication> TargetTracker::target() const {
    return targetApp_ ? targetApp_ : lastFocusedTargetApp();
}

std::optional<RunningApplication> TargetTracker::lastFocusedTargetApp() const {
    if (lastFocusedTargetApp_ && workspace_.isRunning(*lastFocusedTargetApp_)) {
        return lastFocusedTargetApp_;
    }
    return std::nullopt;
}

bool TargetTracker::isTovikVoice(const RunningApplication& application) const {
    const auto self = workspace_.currentApplication();
    return application.bundleIdentifier == self.bundleIdentifier ||
           application.processIdentifier == self.processIdentifier;
}

} // namespace tovik
