// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/WindowSystem.h"

#include <QGuiApplication>

#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace tovik {

namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

} // namespace

xcb_connection_t* x11Connection() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

void waitForWindowRequests() {
    if (xcb_connection_t* const connection = x11Connection()) {
        // The answer to any question comes after all that was asked before it.
        std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    }
}

bool DesktopCompositing::isActive() const {
    xcb_connection_t* const connection = x11Connection();
    if (!connection) {
        return true;
    }
    // The owner of this selection is the compositing manager of the first screen; Qt uses no other.
    constexpr char name[] = "_NET_WM_CM_S0";
    const std::unique_ptr<xcb_intern_atom_reply_t, Free> atom(
        xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 0, std::strlen(name), name), nullptr));
    if (!atom) {
        return false;
    }
    const std::unique_ptr<xcb_get_selection_owner_reply_t, Free> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, atom->atom), nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

} // namespace tovik
