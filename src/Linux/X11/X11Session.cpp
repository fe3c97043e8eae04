// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/X11/X11Session.h"

#include "Linux/X11/X11Connection.h"
#include "Linux/X11/X11Handle.h"

#include <X11/Xlib.h>
#include <X11/extensions/XInput2.h>
#include <X11/extensions/XTest.h>

#include <algorithm>
#include <span>
#include <string_view>

namespace tovik {
namespace {

bool hasExtension(Display* display, const char* name) {
    int opcode = 0;
    int event = 0;
    int error = 0;
    return XQueryExtension(display, name, &opcode, &event, &error) != False;
}

bool hasRawKeyEvents(Display* display) {
    int major = 2;
    int minor = 2;
    return hasExtension(display, "XInputExtension") && XIQueryVersion(display, &major, &minor) == Success &&
           (major > 2 || (major == 2 && minor >= 2));
}

bool hasTestKeys(Display* display) {
    int event = 0;
    int error = 0;
    int major = 0;
    int minor = 0;
    return XTestQueryExtension(display, &event, &error, &major, &minor) != False;
}

/// Newer ones say so by an extension, older ones only by the names of their devices.
bool isXwayland(Display* display) {
    if (hasExtension(display, "XWAYLAND")) {
        return true;
    }
    int count = 0;
    const X11Handle<XIDeviceInfo, XIFreeDeviceInfo> devices(XIQueryDevice(display, XIAllDevices, &count));
    const auto all = std::span(devices.get(), devices ? static_cast<std::size_t>(count) : 0);
    return std::any_of(all.begin(), all.end(), [](const XIDeviceInfo& device) {
        return std::string_view(device.name).starts_with("xwayland-");
    });
}

std::string sentenceFor(const X11Session& session) {
    if (!session.canSeeKeys) {
        return "This X server does not show the talk key to Tovik Record: it lacks the XInput extension in "
               "version 2.2.";
    }
    if (!session.canPressKeys) {
        return "This X server does not let Tovik Record paste: it lacks the XTEST extension.";
    }
    if (session.underWayland) {
        return "This is a Wayland session: Tovik Record sees the talk key, and can paste, only while a "
               "window "
               "that uses X has the keyboard. Log in to an X session to dictate anywhere.";
    }
    return {};
}

} // namespace

X11Session X11Session::examine(const std::string& displayName) {
    const auto connection = X11Connection::open(displayName);
    if (!connection) {
        return {.sentence = noDisplayError().description};
    }
    return examine(*connection.value());
}

X11Session X11Session::examine(X11Connection& connection) {
    X11Session session;
    session.canSeeKeys = hasRawKeyEvents(connection.display());
    session.canPressKeys = hasTestKeys(connection.display());
    session.underWayland = session.canSeeKeys && isXwayland(connection.display());
    session.sentence = sentenceFor(session);
    return session;
}

Error X11Session::noDisplayError() {
    return {"X11", 1, "There is no X display that Tovik Record can reach, so it cannot see the talk key."};
}

} // namespace tovik
