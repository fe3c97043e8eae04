// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Workspace.h"

#include <optional>

namespace tovik {

/// Knows which application a dictation's text belongs to. Main thread.
class TargetTracker {
public:
    explicit TargetTracker(Workspace& workspace);

    /// Takes the frontmost application as the last one focused, unless it is this program, and follows every
    /// activation from now on.
    void startFollowing();

    /// Fixes the target of the dictation that begins now: the frontmost application or, while this program
    /// is in front, the other application that was in front last. Nothing when there is none.
    void chooseTarget();

    /// Where the text goes: the chosen target, else the application focused last.
    [[nodiscard]] std::optional<RunningApplication> target() const;

    [[nodiscard]] const std::optional<RunningApplication>& targetApp() const { return targetApp_; }
    /// Nothing once that application has ended.
    [[nodiscard]] std::optional<RunningApplication> lastFocusedTargetApp() const;

    /// Whether the application is this very program, which never records itself as a target.
    [[nodiscard]] bool isTovikVoice(const RunningApplication& application) const;

private:
    Workspace& workspace_;
    std::optional<RunningApplication> targetApp_;
    std::optional<RunningApplication> lastFocusedTargetApp_;
    Subscription workspaceObserver_;
};

} // namespace tovik
