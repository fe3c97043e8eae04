// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/X11/X11Connection.h"

#include <QSocketNotifier>

#include <algorithm>
#include <mutex>
#include <set>
#include <span>
#include <string_view>
#include <utility>

// After Qt: Xlib defines macros with everyday names.
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/extensions/XInput2.h>
#include <X11/extensions/XTest.h>

namespace tovik {
namespace {

// Xlib has one handler of each kind for the whole process, so the connections that are ours are told apart here.
std::mutex errorHandlerMutex;
// An empty set allocates nothing, so making it cannot throw.
std::set<Display*> ourDisplays; // NOLINT(bugprone-throwing-static-initialization)
XErrorHandler previousErrorHandler = nullptr;
XIOErrorHandler previousLossHandler = nullptr;

/// The handler that others have set, or nothing when the connection is ours.
template <typename Handler> Handler handlerOfOthers(Display* display, const Handler& previous) {
    const std::lock_guard lock(errorHandlerMutex);
    return ourDisplays.contains(display) ? nullptr : previous;
}

int handleError(Display* display, XErrorEvent* event) {
    const auto previous = handlerOfOthers(display, previousErrorHandler);
    return previous != nullptr ? previous(display, event) : 0;
}

/// Qt's handler ends the process, also for a connection that is not its own. When ours was the first to see
/// that the server is gone, nobody would keep the words of a recording then: it returns, so that Xlib goes on
/// to the connection's own exit handler, and the end comes when Qt sees it, too.
int handleLoss(Display* display) {
    const auto previous = handlerOfOthers(display, previousLossHandler);
    return previous != nullptr ? previous(display) : 0;
}

void adopt(Display* display) {
    const std::lock_guard lock(errorHandlerMutex);
    ourDisplays.insert(display);
    if (const auto replaced = XSetErrorHandler(handleError); replaced != handleError) {
        previousErrorHandler = replaced;
    }
    if (const auto replaced = XSetIOErrorHandler(handleLoss); replaced != handleLoss) {
        previousLossHandler = replaced;
    }
}

void disown(Display* display) {
    const std::lock_guard lock(errorHandlerMutex);
    ourDisplays.erase(display);
}

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

Result<std::unique_ptr<X11Connection>> X11Connection::open(const std::string& displayName) {
    Display* display = XOpenDisplay(displayName.empty() ? nullptr : displayName.c_str());
    if (display == nullptr) {
        return Error{"X11", 1,
                     "The display \"" + std::string(XDisplayName(displayName.c_str())) +
                         "\" cannot be opened."};
    }
    return std::unique_ptr<X11Connection>(new X11Connection(display));
}

X11Connection::X11Connection(Display* display) : display_(display), root_(DefaultRootWindow(display)) {
    adopt(display);
    XSetIOErrorExitHandler(
        display, [](Display*, void* connection) { static_cast<X11Connection*>(connection)->broken_ = true; },
        this);
}

X11Connection::~X11Connection() {
    XCloseDisplay(display_);
    disown(display_);
}

int X11Connection::descriptor() const {
    return ConnectionNumber(display_);
}

unsigned long X11Connection::atom(const std::string& name) {
    const auto known = atoms_.find(name);
    if (known != atoms_.end()) {
        return known->second;
    }
    const Atom made = XInternAtom(display_, name.c_str(), False);
    if (made != None) {
        atoms_.emplace(name, made);
    }
    return made;
}

void X11Connection::sync() {
    if (!broken_) {
        XSync(display_, False);
    }
}

unsigned long X11Connection::serverTime() {
    if (broken_) {
        return CurrentTime;
    }
    if (clockWindow_ == None) {
        clockWindow_ = XCreateSimpleWindow(display_, root_, -1, -1, 1, 1, 0, 0, 0);
        XSelectInput(display_, clockWindow_, PropertyChangeMask);
    }
    const unsigned char nothing = 0;
    XChangeProperty(display_, clockWindow_, XA_WM_NAME, XA_STRING, 8, PropModeAppend, &nothing, 0);
    sync();
    Time time = CurrentTime;
    XEvent event;
    while (XCheckTypedWindowEvent(display_, clockWindow_, PropertyNotify, &event) != False) {
        time = event.xproperty.time;
    }
    return time;
}

X11EventWatch::X11EventWatch(X11Connection& connection, std::function<void(XEvent&)> handler)
    : connection_(connection),
      handler_(std::move(handler)),
      notifier_(std::make_unique<QSocketNotifier>(connection.descriptor(), QSocketNotifier::Read)) {
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [this] { dispatchPending(); });
    // Requests made so far may have brought in events already.
    XFlush(connection_.display());
    QMetaObject::invokeMethod(
        notifier_.get(), [this] { dispatchPending(); }, Qt::QueuedConnection);
}

X11EventWatch::~X11EventWatch() = default;

void X11EventWatch::catchUp() {
    connection_.sync();
    dispatchPending();
}

void X11EventWatch::dispatchPending() {
    while (!connection_.broken() && XPending(connection_.display()) > 0) {
        XEvent event;
        XNextEvent(connection_.display(), &event);
        handler_(event);
    }
    if (connection_.broken()) {
        notifier_->setEnabled(false);
    }
}

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
