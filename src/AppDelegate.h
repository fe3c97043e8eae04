// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Lifetime.h"
#include "Platform/Platform.h"

#include <memory>

namespace tovik {

/// Owns the parts of the program and joins them; the rules are theirs. Main thread.
class AppDelegate {
public:
    explicit AppDelegate(const Platform& platform);
    ~AppDelegate();
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    /// The launch: once, when the event loop runs.
    void applicationDidFinishLaunching();
    /// The program came to the front: the user may have changed a permission meanwhile.
    void applicationDidBecomeActive();
    /// The program was started again, or its icon clicked. True: it is to be shown.
    bool applicationShouldHandleReopen(bool hasVisibleWindows);
    [[nodiscard]] bool applicationShouldTerminateAfterLastWindowClosed() const { return false; }

    void openMainWindowFromMenu();
    /// Ends the program, after a text that is still on its way has been delivered; asked again, at once.
    void quitApp();
    /// The same, when it is not the user who waits: in less time.
    void sessionWillEnd();
    /// The process ends because its windows have lost the desktop: saves what was being recognised.
    void displayLost();

private:
    struct Parts;

    void createStatusItem();
    void createRecorder();
    void createSession();
    void createMenuAndWindow();
    void startKeyMonitor();
    void sayFarewell(Seconds patience);

    Platform platform_;
    std::unique_ptr<Parts> parts_;
    Lifetime lifetime_;
};

} // namespace tovik
