// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/X11/X11Connection.h"

#include <X11/Xlib.h>

#include <mutex>
#include <set>

namespace tovik {
namespace {

// Xlib has one error handler for the whole process, so the connections that are ours are told apart here.
std::mutex errorHandlerMutex;
// An empty set allocates nothing, so making it cannot throw.
std::set<Display*> ourDisplays; // NOLINT(bugprone-throwing-static-initialization)
XErrorHandler previousErrorHandler = nullptr;

int handleError(Display* display, XErrorEvent* event) {
    XErrorHandler previous = nullptr;
    {
        const std::lock_guard lock(errorHandlerMutex);
        if (ourDisplays.contains(display)) {
            return 0;
        }
        previous = previousErrorHandler;
    }
    return previous != nullptr ? previous(display, event) : 0;
}

void adopt(Display* display) {
    const std::lock_guard lock(errorHandlerMutex);
    ourDisplays.insert(display);
    if (const auto replaced = XSetErrorHandler(handleError); replaced != handleError) {
        previousErrorHandler = replaced;
    }
}

void disown(Display* display) {
    const std::lock_guard lock(errorHandlerMutex);
    ourDisplays.erase(display);
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

} // namespace tovik
