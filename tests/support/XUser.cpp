// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/XUser.h"

#include "support/EventLoop.h"

#include <QProcess>

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/extensions/XInput2.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <stdexcept>

namespace tovik::test {

struct XUser::Connection {
    explicit Connection(const std::string& name)
        : display(XOpenDisplay(name.empty() ? nullptr : name.c_str())) {
        if (display == nullptr) {
            throw std::runtime_error("no X server to test with");
        }
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() { XCloseDisplay(display); }

    /// The id of a device; the XInput protocol counts from 2.
    [[nodiscard]] int device(const std::string& name) const {
        int count = 0;
        XIDeviceInfo* const devices = XIQueryDevice(display, XIAllDevices, &count);
        int id = 0;
        for (int index = 0; index < count; ++index) {
            if (devices[index].name == name) {
                id = devices[index].deviceid;
            }
        }
        XIFreeDeviceInfo(devices);
        if (id == 0) {
            throw std::runtime_error("no device " + name);
        }
        return id;
    }

    Display* display;
};

XUser::XUser(const std::string& display) : connection_(std::make_unique<Connection>(display)) {}

XUser::~XUser() = default;

unsigned XUser::keyCode(const std::string& key) const {
    const auto found = findKey(key);
    if (found == 0) {
        throw std::runtime_error("no key " + key);
    }
    return found;
}

bool XUser::hasKey(const std::string& key) const {
    return findKey(key) != 0;
}

unsigned XUser::findKey(const std::string& key) const {
    const KeySym keysym = XStringToKeysym(key.c_str());
    XkbDescPtr keyboard = XkbGetMap(connection_->display, XkbKeySymsMask, XkbUseCoreKbd);
    unsigned found = 0;
    for (unsigned code = keyboard->min_key_code; found == 0 && code <= keyboard->max_key_code; ++code) {
        for (int index = 0; index < XkbKeyNumSyms(keyboard, code); ++index) {
            if (XkbKeySym(keyboard, code, index) == keysym) {
                found = code;
            }
        }
    }
    XkbFreeKeyboard(keyboard, XkbAllComponentsMask, True);
    return found;
}

std::vector<unsigned> XUser::unusedKeyCodes() const {
    XkbDescPtr keyboard = XkbGetMap(connection_->display, XkbKeySymsMask, XkbUseCoreKbd);
    std::vector<unsigned> unused;
    for (unsigned code = keyboard->min_key_code; code <= keyboard->max_key_code; ++code) {
        if (XkbKeyNumSyms(keyboard, code) == 0) {
            unused.push_back(code);
        }
    }
    XkbFreeKeyboard(keyboard, XkbAllComponentsMask, True);
    return unused;
}

void XUser::remap(unsigned code, const std::string& key) {
    KeySym meanings[] = {XStringToKeysym(key.c_str()), XStringToKeysym(key.c_str())};
    XChangeKeyboardMapping(connection_->display, static_cast<int>(code), 2, meanings, 1);
    sync();
}

void XUser::press(const std::string& key) {
    pressCode(keyCode(key));
}

void XUser::release(const std::string& key) {
    releaseCode(keyCode(key));
}

void XUser::pressCode(unsigned code) {
    XTestFakeKeyEvent(connection_->display, code, True, CurrentTime);
    sync();
}

void XUser::releaseCode(unsigned code) {
    XTestFakeKeyEvent(connection_->display, code, False, CurrentTime);
    sync();
}

void XUser::tap(const std::string& key) {
    press(key);
    release(key);
}

std::bitset<256> XUser::heldKeys() const {
    char bits[32] = {};
    XQueryKeymap(connection_->display, bits);
    std::bitset<256> held;
    for (std::size_t code = 0; code < held.size(); ++code) {
        held[code] = ((static_cast<unsigned char>(bits[code / 8]) >> (code % 8)) & 1U) != 0;
    }
    return held;
}

void XUser::letGo() {
    const auto held = heldKeys();
    for (unsigned code = 0; code < held.size(); ++code) {
        if (held[code]) {
            XTestFakeKeyEvent(connection_->display, code, False, CurrentTime);
        }
    }
    XkbLockModifiers(connection_->display, XkbUseCoreKbd, 0xff, 0);
    XkbLockGroup(connection_->display, XkbUseCoreKbd, 0);
    sync();
}

void XUser::setLayout(const std::string& arguments) {
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    const QString display = DisplayString(connection_->display);
    process.start("setxkbmap", QStringList{"-display", display, "-option", ""} +
                                   QProcess::splitCommand(QString::fromStdString(arguments)));
    if (!process.waitForFinished() || process.exitCode() != 0) {
        throw std::runtime_error("setxkbmap " + arguments + " failed");
    }
    sync();
}

void XUser::switchToGroup(unsigned group) {
    XkbLockGroup(connection_->display, XkbUseCoreKbd, group);
    sync();
}

void XUser::lockModifiers(unsigned modifiers) {
    XkbLockModifiers(connection_->display, XkbUseCoreKbd, 0xff, modifiers);
    sync();
}

bool XUser::grabKeyboard() {
    Display* const display = connection_->display;
    const int answer =
        XGrabKeyboard(display, DefaultRootWindow(display), False, GrabModeAsync, GrabModeAsync, CurrentTime);
    sync();
    return answer == GrabSuccess;
}

void XUser::ungrabKeyboard() {
    XUngrabKeyboard(connection_->display, CurrentTime);
    sync();
}

void XUser::plugInKeyboard(const std::string& name) {
    std::string mutableName = name;
    XIAddMasterInfo master{};
    master.type = XIAddMaster;
    master.name = mutableName.data();
    master.send_core = True;
    master.enable = True;
    XIAnyHierarchyChangeInfo change;
    change.add = master;
    XIChangeHierarchy(connection_->display, &change, 1);
    sync();
}

void XUser::pullOutKeyboard(const std::string& name) {
    XIRemoveMasterInfo master{};
    master.type = XIRemoveMaster;
    master.deviceid = connection_->device(name + " pointer");
    master.return_mode = XIFloating;
    XIAnyHierarchyChangeInfo change;
    change.remove = master;
    XIChangeHierarchy(connection_->display, &change, 1);
    sync();
}

void XUser::typeOn(const std::string& name) {
    XISetClientPointer(connection_->display, None, connection_->device(name + " pointer"));
    sync();
}

void XUser::clickInto(unsigned long window) {
    toRoot(window, "_NET_ACTIVE_WINDOW", 2, CurrentTime);
}

void XUser::setDesktop(long desktop) {
    toRoot(DefaultRootWindow(connection_->display), "_NET_CURRENT_DESKTOP", desktop, CurrentTime);
}

void XUser::setDesktopCount(long count) {
    const bool done = runUntil([&] {
        toRoot(DefaultRootWindow(connection_->display), "_NET_NUMBER_OF_DESKTOPS", count, 0);
        return rootNumber("_NET_NUMBER_OF_DESKTOPS") == count;
    });
    if (!done) {
        throw std::runtime_error("the window manager does not answer");
    }
}

long XUser::rootNumber(const char* property) const {
    Display* const display = connection_->display;
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long rest = 0;
    unsigned char* bytes = nullptr;
    XGetWindowProperty(display, DefaultRootWindow(display), XInternAtom(display, property, False), 0, 1,
                       False, XA_CARDINAL, &type, &format, &count, &rest, &bytes);
    const long number = format == 32 && count == 1 ? *reinterpret_cast<long*>(bytes) : -1;
    XFree(bytes);
    return number;
}

void XUser::unmap(unsigned long window) {
    XUnmapWindow(connection_->display, window);
    sync();
}

bool XUser::isViewable(unsigned long window) const {
    XWindowAttributes attributes;
    return XGetWindowAttributes(connection_->display, window, &attributes) != 0 &&
           attributes.map_state == IsViewable;
}

void XUser::iconify(unsigned long window) {
    Display* const display = connection_->display;
    XIconifyWindow(display, window, DefaultScreen(display));
    sync();
}

void XUser::moveToDesktop(unsigned long window, long desktop) {
    toRoot(window, "_NET_WM_DESKTOP", desktop, 2);
}

void XUser::focus(unsigned long window) {
    XSetInputFocus(connection_->display, window, RevertToPointerRoot, CurrentTime);
    sync();
}

unsigned long XUser::focused() const {
    Window window = None;
    int revertTo = 0;
    XGetInputFocus(connection_->display, &window, &revertTo);
    return window;
}

void XUser::toRoot(unsigned long window, const char* message, long first, long second) {
    Display* const display = connection_->display;
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = XInternAtom(display, message, False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = first;
    event.xclient.data.l[1] = second;
    XSendEvent(display, DefaultRootWindow(display), False, SubstructureRedirectMask | SubstructureNotifyMask,
               &event);
    sync();
}

void XUser::sync() {
    // The server answers before it has written to everybody else; by the second answer it has.
    XSync(connection_->display, False);
    XSync(connection_->display, False);
}

} // namespace tovik::test
