// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Workspace.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tovik {

class X11Connection;

/// Reads what windows and the window manager tell about themselves. Windows may go at any moment: of one
/// that is gone there is nothing to read. Window 0 stands for none. Main thread.
class X11Windows {
public:
    /// The connection outlives this object.
    explicit X11Windows(X11Connection& connection);

    /// Whether a window manager of the usual kind (EWMH) is at work, able to do this; the name is that of
    /// the root window's property, such as "_NET_ACTIVE_WINDOW".
    [[nodiscard]] bool managerSupports(const std::string& name) const;

    /// The window that the window manager holds active; without one, the window that has the keyboard.
    [[nodiscard]] unsigned long activeWindow() const;

    [[nodiscard]] bool exists(unsigned long window) const;
    [[nodiscard]] bool isViewable(unsigned long window) const;

    /// The application that a window belongs to.
    [[nodiscard]] RunningApplication application(unsigned long window) const;
    /// The names that an application goes by: its class, then the name of its instance.
    [[nodiscard]] std::vector<std::string> applicationIds(unsigned long window) const;
    /// As the X server knows it; 0 when neither it nor the window tells, or when it is one of another
    /// machine.
    [[nodiscard]] std::int64_t processIdentifier(unsigned long window) const;

    /// Whether it is the other window, or a dialog of it, or a dialog of a dialog of it. A dialog that
    /// belongs to no window in particular stands for all of its program.
    [[nodiscard]] bool standsFor(unsigned long window, unsigned long other) const;

    /// The windows of applications, topmost first.
    [[nodiscard]] std::vector<unsigned long> stackedWindows() const;

    /// The desktop that has to be shown for the window to be seen; nothing when the window is on the one that
    /// is shown, or on all.
    [[nodiscard]] std::optional<unsigned long> otherDesktop(unsigned long window) const;

    /// Whether the window takes part in a protocol of ICCCM, such as "WM_TAKE_FOCUS".
    [[nodiscard]] bool hasProtocol(unsigned long window, const std::string& name) const;

private:
    [[nodiscard]] std::vector<unsigned long> numbers(unsigned long window, const std::string& property,
                                                     unsigned long type) const;
    [[nodiscard]] std::string text(unsigned long window, const std::string& property) const;
    [[nodiscard]] unsigned long focusedWindow() const;
    [[nodiscard]] bool isShown(unsigned long window) const;
    [[nodiscard]] unsigned long applicationWindowAround(unsigned long window) const;
    [[nodiscard]] bool isOnThisMachine(unsigned long window) const;
    [[nodiscard]] std::int64_t processByConnection(unsigned long window) const;

    X11Connection& connection_;
};

} // namespace tovik
