// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Overlay/Compositing.h"

#include "UserInterface/Window/WindowSystem.h"

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

bool DesktopCompositing::isActive() const {
    xcb_connection_t* const connection = windowsystem::x11Connection();
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
