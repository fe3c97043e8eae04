// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/WindowSystem.h"

#include <QGuiApplication>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace tovik {

namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename Reply>
using Owned = std::unique_ptr<Reply, Free>;

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

std::uint32_t x11Atom(const std::string& name) {
    auto* const connection = x11Connection();
    if (!connection) {
        return 0;
    }
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
    const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : 0;
}

bool isX11SelectionOwned(std::uint32_t selection) {
    auto* const connection = x11Connection();
    if (!connection || selection == 0) {
        return false;
    }
    const auto cookie = xcb_get_selection_owner(connection, selection);
    const Owned<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(connection, cookie, nullptr));
    return reply && reply->owner != XCB_WINDOW_NONE;
}

bool DesktopCompositing::isActive() const {
    // The owner of this selection is the compositing manager of the first screen; Qt uses no other.
    return !x11Connection() || isX11SelectionOwned(x11Atom("_NET_WM_CM_S0"));
}

} // namespace tovik
