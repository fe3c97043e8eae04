// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/WindowSystem.h"

#include <QGuiApplication>

#include <xcb/xcb.h>

#include <cstdlib>

namespace tovik::windowsystem {

xcb_connection_t* x11Connection() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

void waitForRequests() {
    if (xcb_connection_t* const connection = x11Connection()) {
        // The answer to any question comes after all that was asked before it.
        std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    }
}

} // namespace tovik::windowsystem
