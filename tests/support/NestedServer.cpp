// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/NestedServer.h"

#include "support/EventLoop.h"

#include <X11/Xlib.h>
#include <X11/extensions/XInput2.h>

#include <array>
#include <stdexcept>

namespace tovik::test {

struct NestedServer::Connection {
    explicit Connection(const std::string& name) : display(XOpenDisplay(name.c_str())) {
        if (display == nullptr) {
            throw std::runtime_error("the nested server does not answer");
        }
        int major = 2;
        int minor = 2;
        XIQueryVersion(display, &major, &minor);
        std::array<unsigned char, XIMaskLen(XI_LASTEVENT)> bits{};
        XISetMask(bits.data(), XI_RawKeyPress);
        XISetMask(bits.data(), XI_RawKeyRelease);
        XIEventMask mask{XIAllMasterDevices, static_cast<int>(bits.size()), bits.data()};
        XISelectEvents(display, DefaultRootWindow(display), &mask, 1);
        XSync(display, False);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() { XCloseDisplay(display); }

    Display* display;
    int strokes = 0;
};

namespace {

/// The window of a client that has this process's host window: the newest child of the root with a name.
unsigned long windowNamed(const std::string& part) {
    Display* const display = XOpenDisplay(nullptr);
    Window root = None;
    Window parent = None;
    Window* children = nullptr;
    unsigned count = 0;
    unsigned long found = 0;
    XQueryTree(display, DefaultRootWindow(display), &root, &parent, &children, &count);
    for (unsigned index = 0; index < count; ++index) {
        char* name = nullptr;
        XFetchName(display, children[index], &name);
        if (name != nullptr && std::string(name).find(part) != std::string::npos) {
            found = children[index];
        }
        XFree(name);
    }
    XFree(children);
    XCloseDisplay(display);
    return found;
}

} // namespace

NestedServer::NestedServer() {
    process_.setProcessChannelMode(QProcess::SeparateChannels);
    process_.setStandardErrorFile(QProcess::nullDevice());
    process_.start("Xephyr", {"-displayfd", "1", "-ac", "-screen", "400x300", "-title", "nested server"});
    const bool ready = runUntil([this] { return process_.canReadLine(); });
    if (!ready) {
        throw std::runtime_error("the nested server did not start");
    }
    display_ = ":" + process_.readLine().trimmed().toStdString();
    if (!runUntil([this] { return (window_ = windowNamed("nested server")) != 0; })) {
        throw std::runtime_error("the nested server shows no window");
    }
    connection_ = std::make_unique<Connection>(display_);
}

NestedServer::~NestedServer() {
    connection_.reset();
    process_.terminate();
    process_.waitForFinished();
}

int NestedServer::strokes() {
    while (XPending(connection_->display) > 0) {
        XEvent event;
        XNextEvent(connection_->display, &event);
        connection_->strokes += event.type == GenericEvent ? 1 : 0;
    }
    return connection_->strokes;
}

} // namespace tovik::test
