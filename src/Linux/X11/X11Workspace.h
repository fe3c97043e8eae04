// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/X11/X11Connection.h"
#include "Platform/Subscription.h"
#include "Platform/Workspace.h"

#include <functional>
#include <memory>
#include <string>

namespace tovik {

class MainQueue;
class X11Connection;
class X11EventWatch;
class X11Windows;

/// The desktop through the window manager's root window properties (EWMH); without a window manager, through
/// the keyboard focus. What is remembered of an application is its window.
class X11Workspace : public Workspace {
public:
    struct Services {
        MainQueue& queue;
        /// This program, by the name of its windows' class.
        std::string ownBundleIdentifier;
        std::string ownLocalizedName;
        /// Hides the windows of this program.
        std::function<void()> hideOwnWindows;
        /// Gives an address or a path to the desktop; false when nothing takes it.
        std::function<bool(const std::string& addressOrPath)> open = nullptr;
    };

    /// The queue outlives the workspace. An empty display name means the session's display. Without a
    /// display there is no other application and nothing to activate.
    explicit X11Workspace(Services services, const std::string& displayName = {});
    ~X11Workspace() override;

    [[nodiscard]] std::optional<RunningApplication> frontmostApplication() const override;
    [[nodiscard]] RunningApplication currentApplication() const override;
    [[nodiscard]] bool isRunning(const RunningApplication& application) const override;

    [[nodiscard]] Subscription onActivation(std::function<void(const RunningApplication&)> handler) override;
    [[nodiscard]] Subscription onActiveSpaceChanged(std::function<void()> handler) override;

    void hideSelf() override;
    void deactivateSelf() override;
    bool activate(const RunningApplication& application, unsigned options) override;

    [[nodiscard]] bool isOwnProgramInFront() const;

    /// What activate() was last asked for; nothing since this program was hidden.
    [[nodiscard]] const std::optional<RunningApplication>& activated() const { return activated_; }
    /// Whether the application's window is in front, or can no longer be. A dialog of that window counts;
    /// another window of the same program does not.
    [[nodiscard]] bool isInFront(const RunningApplication& application) const;
    /// As activate(), but what is remembered as activated stays. False when there is nothing to bring.
    bool bringToFront(const RunningApplication& application);

    bool openUrl(const std::string& address) override;
    bool openFile(const std::string& path) override;

private:
    void handle(_XEvent& event);
    void frontMayHaveChanged();
    void watchFocusOf(unsigned long window);
    [[nodiscard]] bool isWindowOf(const RunningApplication& application) const;
    [[nodiscard]] unsigned long windowToActivate(const RunningApplication& application) const;
    void askWindowManager(unsigned long window);
    void tellWindowManager(unsigned long window, const char* message, unsigned long first,
                           unsigned long second);
    void takeFocus(unsigned long window);

    Services services_;
    /// As the X server knows it: in a container this process has another number than outside, where those of
    /// the other programs come from.
    std::int64_t ownProcess_;
    std::unique_ptr<X11Connection> queries_;
    std::unique_ptr<X11Connection> events_;
    std::unique_ptr<X11Windows> windows_;
    std::unique_ptr<X11EventWatch> watch_;
    /// The last that was told of. Numbers of windows are used again, so the window alone does not tell.
    std::optional<RunningApplication> front_;
    std::optional<RunningApplication> activated_;
    unsigned long focusWatched_ = 0;
    Observers<RunningApplication> activation_;
    Observers<> activeSpace_;
};

} // namespace tovik
