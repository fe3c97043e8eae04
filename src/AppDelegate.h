// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Platform.h"

#include <memory>

namespace tovik {

/// The program: made whole at the launch, and asked to end here. Main thread.
class AppDelegate {
public:
    explicit AppDelegate(const Platform& platform);
    ~AppDelegate();
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    /// The launch: once, when the event loop runs. What comes before it finds nothing to act upon.
    void applicationDidFinishLaunching();
    /// The program came to the front: the user may have changed a permission meanwhile.
    void applicationDidBecomeActive();
    /// The program was started again, or its icon clicked. True: it is to be shown.
    bool applicationShouldHandleReopen(bool hasVisibleWindows);
    [[nodiscard]] bool applicationShouldTerminateAfterLastWindowClosed() const { return false; }

    /// Ends the program, after a text that is still on its way has been delivered; asked again, at once.
    void quitApp();
    /// The same, when it is not the user who waits: in less time.
    void sessionWillEnd();
    /// The process ends because its windows have lost the desktop: saves what was being recognized.
    void displayLost();

private:
    struct Program;

    void quit(Seconds patience);

    const Platform platform_;
    std::unique_ptr<Program> program_;
    bool isQuitting_ = false;
};

} // namespace tovik
