// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/X11/X11Workspace.h"

#include "Linux/X11/X11Connection.h"
#include "Linux/X11/X11Windows.h"
#include "Platform/MainQueue.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <utility>

namespace tovik {

namespace {

/// Whether a process of this machine is there and has not ended; one that only waits to be reaped has.
bool isProcessRunning(std::int64_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string line;
    if (process <= 0 || !std::getline(file, line)) {
        return false;
    }
    // The name in parentheses may itself hold parentheses; the state follows it.
    const auto end = line.rfind(')');
    const char state = end == std::string::npos || end + 2 >= line.size() ? '?' : line[end + 2];
    return state != 'Z' && state != 'X';
}

} // namespace

X11Workspace::X11Workspace(Services services, const std::string& displayName)
    : services_(std::move(services)),
      ownProcess_(getpid()) {
    auto queries = X11Connection::open(displayName);
    auto events = X11Connection::open(displayName);
    if (!queries || !events) {
        return;
    }
    queries_ = std::move(queries.value());
    events_ = std::move(events.value());
    windows_ = std::make_unique<X11Windows>(*queries_);
    const auto own = XCreateSimpleWindow(queries_->display(), queries_->root(), -1, -1, 1, 1, 0, 0, 0);
    if (const auto known = windows_->processIdentifier(own); known > 0) {
        ownProcess_ = known;
    }
    XDestroyWindow(queries_->display(), own);

    // Focus changes matter only where no window manager tells of the active window.
    XSelectInput(events_->display(), events_->root(), PropertyChangeMask | FocusChangeMask);
    events_->sync();
    front_ = frontmostApplication();
    watchFocusOf(front_ ? front_->window : None);
    watch_ = std::make_unique<X11EventWatch>(*events_, [this](XEvent& event) { handle(event); });
}

X11Workspace::~X11Workspace() = default;

std::optional<RunningApplication> X11Workspace::frontmostApplication() const {
    const auto window = windows_ ? windows_->activeWindow() : None;
    if (window == None) {
        return std::nullopt;
    }
    return windows_->application(window);
}

RunningApplication X11Workspace::currentApplication() const {
    return {services_.ownBundleIdentifier, ownProcess_, services_.ownLocalizedName, 0};
}

bool X11Workspace::isRunning(const RunningApplication& application) const {
    // The window comes first: in a container other programs' processes cannot be seen.
    return isWindowOf(application) || isProcessRunning(application.processIdentifier);
}

Subscription X11Workspace::onActivation(std::function<void(const RunningApplication&)> handler) {
    return activation_.add(std::move(handler));
}

Subscription X11Workspace::onActiveSpaceChanged(std::function<void()> handler) {
    return activeSpace_.add(std::move(handler));
}

void X11Workspace::hideSelf() {
    activated_.reset();
    if (services_.hideOwnWindows) {
        services_.hideOwnWindows();
    }
}

void X11Workspace::deactivateSelf() {
    // A hidden program has no window that could be in front.
}

bool X11Workspace::activate(const RunningApplication& application, unsigned) {
    activated_.reset();
    if (!bringToFront(application)) {
        return false;
    }
    activated_ = application;
    return true;
}

bool X11Workspace::bringToFront(const RunningApplication& application) {
    const auto window = windowToActivate(application);
    if (window == None) {
        return false;
    }
    if (windows_->managerSupports("_NET_ACTIVE_WINDOW")) {
        askWindowManager(window);
    } else {
        takeFocus(window);
    }
    queries_->sync();
    return true;
}

bool X11Workspace::isOwnProgramInFront() const {
    return windows_ && windows_->processIdentifier(windows_->activeWindow()) == ownProcess_;
}

bool X11Workspace::isInFront(const RunningApplication& application) const {
    const auto window = windowToActivate(application);
    return window == None || windows_->standsFor(windows_->activeWindow(), window);
}

bool X11Workspace::openUrl(const std::string& address) {
    return services_.open && services_.open(address);
}

bool X11Workspace::openFile(const std::string& path) {
    return services_.open && services_.open(path);
}

void X11Workspace::handle(XEvent& event) {
    const auto changed = event.type == PropertyNotify ? event.xproperty.atom : None;
    if (event.type == FocusIn || event.type == FocusOut || changed == queries_->atom("_NET_ACTIVE_WINDOW")) {
        frontMayHaveChanged();
    } else if (changed == queries_->atom("_NET_CURRENT_DESKTOP")) {
        activeSpace_.tell();
    }
}

void X11Workspace::frontMayHaveChanged() {
    const auto front = frontmostApplication();
    // Between two windows there may be none for a moment.
    if (!front || front == front_) {
        return;
    }
    front_ = front;
    watchFocusOf(front->window);
    activation_.tell(*front);
}

void X11Workspace::watchFocusOf(unsigned long window) {
    if (windows_->managerSupports("_NET_ACTIVE_WINDOW")) {
        return;
    }
    if (focusWatched_ != None) {
        XSelectInput(events_->display(), focusWatched_, NoEventMask);
    }
    focusWatched_ = window;
    if (window != None) {
        XSelectInput(events_->display(), window, FocusChangeMask);
    }
    // When this returns the server knows it: from now on no change is missed.
    XSync(events_->display(), False);
}

bool X11Workspace::isWindowOf(const RunningApplication& application) const {
    // Numbers of windows are used again, so the process has to be the same.
    return windows_ && windows_->exists(application.window) &&
           windows_->processIdentifier(application.window) == application.processIdentifier;
}

unsigned long X11Workspace::windowToActivate(const RunningApplication& application) const {
    if (!windows_ || !isRunning(application)) {
        return None;
    }
    if (application.window != None) {
        return isWindowOf(application) ? application.window : None;
    }
    const auto windows = windows_->stackedWindows();
    const auto found = std::find_if(windows.begin(), windows.end(), [&](Window window) {
        return application.processIdentifier > 0 && !windows_->applicationIds(window).empty() &&
               windows_->processIdentifier(window) == application.processIdentifier;
    });
    return found == windows.end() ? None : *found;
}

void X11Workspace::askWindowManager(unsigned long window) {
    // As a pager asks, for the user, with the time of now: window managers refuse programs that push
    // themselves to the front, and requests from the past.
    constexpr unsigned long kSourcePager = 2;
    const auto now = queries_->serverTime();
    // Some activate no window of another desktop (openbox).
    if (const auto desktop = windows_->otherDesktop(window)) {
        tellWindowManager(queries_->root(), "_NET_CURRENT_DESKTOP", *desktop, now);
    }
    tellWindowManager(window, "_NET_ACTIVE_WINDOW", kSourcePager, now);
}

void X11Workspace::tellWindowManager(unsigned long window, const char* message, unsigned long first,
                                     unsigned long second) {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = queries_->atom(message);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(first);
    event.xclient.data.l[1] = static_cast<long>(second);
    XSendEvent(queries_->display(), queries_->root(), False,
               SubstructureRedirectMask | SubstructureNotifyMask, &event);
}

void X11Workspace::takeFocus(unsigned long window) {
    Display* const display = queries_->display();
    const auto now = queries_->serverTime();
    XMapRaised(display, window);
    queries_->sync();
    if (!windows_->isViewable(window)) {
        return;
    }
    XSetInputFocus(display, window, RevertToPointerRoot, now);
    if (windows_->hasProtocol(window, "WM_TAKE_FOCUS")) {
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = window;
        event.xclient.message_type = queries_->atom("WM_PROTOCOLS");
        event.xclient.format = 32;
        event.xclient.data.l[0] = static_cast<long>(queries_->atom("WM_TAKE_FOCUS"));
        event.xclient.data.l[1] = static_cast<long>(now);
        XSendEvent(display, window, False, NoEventMask, &event);
    }
}

} // namespace tovik
