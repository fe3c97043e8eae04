// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tovik {

/// The settings window, as the rest of the program needs it. Main thread.
class MainWindow {
public:
    virtual ~MainWindow() = default;

    /// Shows the window and gives it the keyboard, once the current event is done.
    virtual void present() = 0;
    /// A short confirmation inside the window.
    virtual void showSavedToast(const std::string& text) = 0;
    /// The stored history has changed.
    virtual void reloadHistoryTable() = 0;
    /// What the desktop lets the program do may have changed.
    virtual void refreshPermissions() = 0;
};

} // namespace tovik
