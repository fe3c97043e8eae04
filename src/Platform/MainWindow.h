// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Observers.h"

#include <string>

namespace tovik {

/// What the program asks of its main window. The window observes each request; while there is none, nothing
/// happens. Main thread.
struct MainWindow {
    template <typename... Arguments>
    struct Request : Observers<Arguments...> {
        void operator()(const Arguments&... arguments) const { this->tell(arguments...); }
    };

    /// To show the window and give it the keyboard, once the current event is done.
    Request<> present;
    /// To show a short confirmation inside the window.
    Request<std::string> showSavedToast;
    /// The stored history has changed. The status menu follows this as well.
    Request<> reloadHistoryTable;
    /// What the desktop lets the program do may have changed.
    Request<> refreshPermissions;
};

/// The window on the screen; dropping it takes it away.
class MainWindowOnScreen {
public:
    virtual ~MainWindowOnScreen() = default;
};

} // namespace tovik
