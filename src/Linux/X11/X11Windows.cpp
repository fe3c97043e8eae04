// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/X11/X11Windows.h"

#include "Linux/X11/X11Connection.h"
#include "Platform/AsciiCase.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XRes.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>

namespace tovik {
namespace {

template <typename T>
using XOwned = X11Handle<T, XFree>;

/// A property of at most so many items is read; nothing that is asked for here is longer.
constexpr long kLongestProperty = 65536;

struct Property {
    XOwned<unsigned char> bytes;
    int format = 0;
    unsigned long count = 0;
};

Property readProperty(Display* display, Window window, Atom name, Atom type) {
    Property property;
    Atom actualType = None;
    unsigned long rest = 0;
    unsigned char* bytes = nullptr;
    if (window == None ||
        XGetWindowProperty(display, window, name, 0, kLongestProperty, False, type, &actualType,
                           &property.format, &property.count, &rest, &bytes) != Success) {
        return {};
    }
    property.bytes.reset(bytes);
    if (type != AnyPropertyType && actualType != type) {
        return {};
    }
    return property;
}

struct Tree {
    Window parent = None;
    std::vector<Window> children;
};

Tree treeOf(Display* display, Window window) {
    Tree tree;
    Window root = None;
    Window* children = nullptr;
    unsigned count = 0;
    if (XQueryTree(display, window, &root, &tree.parent, &children, &count) == 0) {
        return {};
    }
    const XOwned<Window> owned(children);
    tree.children.assign(children, children + count);
    return tree;
}

std::string hostName() {
    std::array<char, HOST_NAME_MAX + 1> name{};
    gethostname(name.data(), name.size() - 1);
    return name.data();
}

std::optional<XWindowAttributes> attributesOf(Display* display, Window window) {
    XWindowAttributes attributes;
    if (window == None || XGetWindowAttributes(display, window, &attributes) == 0) {
        return std::nullopt;
    }
    return attributes;
}

} // namespace

X11Windows::X11Windows(X11Connection& connection) : connection_(connection) {}

std::vector<unsigned long> X11Windows::numbers(unsigned long window, const std::string& property,
                                               unsigned long type) const {
    const auto read = readProperty(connection_.display(), window, connection_.atom(property), type);
    if (!read.bytes || read.format != 32) {
        return {};
    }
    // Xlib gives items of 32 bits as longs.
    const auto* const first = reinterpret_cast<const unsigned long*>(read.bytes.get());
    return {first, first + read.count};
}

std::string X11Windows::text(unsigned long window, const std::string& property) const {
    const auto read =
        readProperty(connection_.display(), window, connection_.atom(property), AnyPropertyType);
    if (!read.bytes || read.format != 8) {
        return {};
    }
    return {reinterpret_cast<const char*>(read.bytes.get()), read.count};
}

bool X11Windows::managerSupports(const std::string& name) const {
    const auto root = connection_.root();
    const auto check = numbers(root, "_NET_SUPPORTING_WM_CHECK", XA_WINDOW);
    // A window manager that died leaves its root properties behind, but not its window.
    if (check.empty() || numbers(check.front(), "_NET_SUPPORTING_WM_CHECK", XA_WINDOW) != check) {
        return false;
    }
    const auto supported = numbers(root, "_NET_SUPPORTED", XA_ATOM);
    return std::find(supported.begin(), supported.end(), connection_.atom(name)) != supported.end();
}

unsigned long X11Windows::activeWindow() const {
    if (!managerSupports("_NET_ACTIVE_WINDOW")) {
        return focusedWindow();
    }
    const auto active = numbers(connection_.root(), "_NET_ACTIVE_WINDOW", XA_WINDOW);
    // openbox goes on naming the last window when it is hidden, iconified or gone.
    return active.empty() || !isShown(active.front()) ? None : active.front();
}

bool X11Windows::isShown(unsigned long window) const {
    const auto attributes = attributesOf(connection_.display(), window);
    if (!attributes || attributes->map_state == IsViewable) {
        return attributes.has_value();
    }
    // What is rolled up to its title is not viewable, but neither iconified nor hidden.
    const auto state = numbers(window, "WM_STATE", connection_.atom("WM_STATE"));
    return !state.empty() && state.front() == NormalState;
}

unsigned long X11Windows::focusedWindow() const {
    Window focused = None;
    int revertTo = 0;
    XGetInputFocus(connection_.display(), &focused, &revertTo);
    if (focused == None || focused == PointerRoot || focused == connection_.root()) {
        return None;
    }
    return applicationWindowAround(focused);
}

unsigned long X11Windows::applicationWindowAround(unsigned long window) const {
    // The keyboard is often held by a window inside, which tells nothing of its application.
    const Atom stateName = connection_.atom("WM_STATE");
    Window outermost = window;
    for (Window current = window; current != None && current != connection_.root();
         current = treeOf(connection_.display(), current).parent) {
        const auto state = readProperty(connection_.display(), current, stateName, AnyPropertyType);
        if (state.bytes || !applicationIds(current).empty()) {
            return current;
        }
        outermost = current;
    }
    return outermost;
}

bool X11Windows::exists(unsigned long window) const {
    return attributesOf(connection_.display(), window).has_value();
}

bool X11Windows::isViewable(unsigned long window) const {
    const auto attributes = attributesOf(connection_.display(), window);
    return attributes && attributes->map_state == IsViewable;
}

RunningApplication X11Windows::application(unsigned long window) const {
    RunningApplication application;
    application.window = window;
    application.processIdentifier = processIdentifier(window);
    const auto ids = applicationIds(window);
    if (!ids.empty()) {
        application.bundleIdentifier = asciiLowerCased(ids.front());
        application.localizedName = ids.front();
    }
    return application;
}

std::vector<std::string> X11Windows::applicationIds(unsigned long window) const {
    XClassHint hint{};
    if (window == None || XGetClassHint(connection_.display(), window, &hint) == 0) {
        return {};
    }
    const XOwned<char> instance(hint.res_name);
    const XOwned<char> className(hint.res_class);
    std::vector<std::string> ids;
    for (const char* const name : {hint.res_class, hint.res_name}) {
        if (name != nullptr && *name != '\0') {
            ids.emplace_back(name);
        }
    }
    return ids;
}

std::int64_t X11Windows::processIdentifier(unsigned long window) const {
    // The server knows who speaks to it. A program in a container tells the number that it has in there,
    // which is that of another program out here, or of none.
    if (const auto known = processByConnection(window); known > 0) {
        return known;
    }
    const auto told = numbers(window, "_NET_WM_PID", XA_CARDINAL);
    return told.empty() || !isOnThisMachine(window) ? 0 : static_cast<std::int64_t>(told.front());
}

bool X11Windows::standsFor(unsigned long window, unsigned long other) const {
    // A dialog may have a dialog of its own. Programs have been seen to name each other in a circle.
    constexpr int kDeepest = 16;
    for (int depth = 0; depth < kDeepest && window != None; ++depth) {
        if (window == other) {
            return true;
        }
        const auto owner = numbers(window, "WM_TRANSIENT_FOR", XA_WINDOW);
        const bool isOfAll = !owner.empty() && (owner.front() == None || owner.front() == connection_.root());
        if (owner.empty() || isOfAll) {
            const auto process = isOfAll ? processIdentifier(window) : 0;
            return process > 0 && process == processIdentifier(other);
        }
        window = owner.front();
    }
    return false;
}

bool X11Windows::isOnThisMachine(unsigned long window) const {
    const auto machine = text(window, "WM_CLIENT_MACHINE");
    const auto own = hostName();
    // Some give the short name of a host, some the long one.
    return machine == own || machine.starts_with(own + '.') || own.starts_with(machine + '.');
}

std::int64_t X11Windows::processByConnection(unsigned long window) const {
    int event = 0;
    int error = 0;
    int major = 0;
    int minor = 0;
    Display* const display = connection_.display();
    if (window == None || XResQueryExtension(display, &event, &error) == False ||
        XResQueryVersion(display, &major, &minor) == 0 || (major == 1 && minor < 2)) {
        return 0;
    }
    XResClientIdSpec wanted{window, XRES_CLIENT_ID_PID_MASK};
    long count = 0;
    XResClientIdValue* values = nullptr;
    if (XResQueryClientIds(display, 1, &wanted, &count, &values) != Success) {
        return 0;
    }
    std::int64_t process = 0;
    for (long index = 0; index < count; ++index) {
        if (const pid_t found = XResGetClientPid(&values[index]); found > 0) {
            process = found;
        }
    }
    XResClientIdsDestroy(count, values);
    return process;
}

std::vector<unsigned long> X11Windows::stackedWindows() const {
    auto windows = managerSupports("_NET_CLIENT_LIST_STACKING")
                       ? numbers(connection_.root(), "_NET_CLIENT_LIST_STACKING", XA_WINDOW)
                       : treeOf(connection_.display(), connection_.root()).children;
    std::reverse(windows.begin(), windows.end());
    return windows;
}

std::optional<unsigned long> X11Windows::otherDesktop(unsigned long window) const {
    constexpr unsigned long kAllDesktops = 0xffffffff;
    const auto shown = numbers(connection_.root(), "_NET_CURRENT_DESKTOP", XA_CARDINAL);
    const auto own = numbers(window, "_NET_WM_DESKTOP", XA_CARDINAL);
    if (shown.empty() || own.empty() || own == shown || (own.front() & kAllDesktops) == kAllDesktops) {
        return std::nullopt;
    }
    return own.front();
}

bool X11Windows::hasProtocol(unsigned long window, const std::string& name) const {
    const auto protocols = numbers(window, "WM_PROTOCOLS", XA_ATOM);
    return std::find(protocols.begin(), protocols.end(), connection_.atom(name)) != protocols.end();
}

} // namespace tovik
