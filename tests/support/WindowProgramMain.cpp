// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// A program with one window, for tests that need other programs on the desktop.
//
//     tovik_test_window CLASS [INSTANCE
//     [no-process|other-machine|container|inner-focus|second-window|dialog|pastes|pastes-late]]
//
// The third word makes its window tell no process, or one of another machine or of a container, or give the
// keyboard to a window inside; or makes it show another window after the first, or a dialog of the first; or
// fetch the clipboard at Insert and at V, at once or after a while, and write it ("text WHAT IT GOT").
// Writes "window NUMBER" when a window is shown, then a line for each key that goes down or up in it
// ("press Insert 0x1": the keysym and the modifiers held before) and for focus it gains. Ends with its
// standard input.
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

/// The server gives the numbers of a client that left to the next one, so that window after window would have
/// the same. Window managers and tests that remember windows would be led astray.
void passOverUsedNumbers(Display* display) {
    for (int passed = getpid() % 1000; passed >= 0; --passed) {
        XFreePixmap(display, XCreatePixmap(display, DefaultRootWindow(display), 1, 1, 1));
    }
}

Window makeWindow(Display* display, char* className, char* instance, std::string_view kind,
                  Window owner = None) {
    const Window window = XCreateSimpleWindow(display, DefaultRootWindow(display), 40, 40, 300, 200, 0, 0,
                                              WhitePixel(display, DefaultScreen(display)));
    XClassHint hint{instance, className};
    XSizeHints size{};
    XWMHints manager{};
    manager.flags = InputHint | StateHint;
    manager.input = True;
    manager.initial_state = NormalState;
    Xutf8SetWMProperties(display, window, className, className, nullptr, 0, &size, &manager, &hint);
    const long process = kind == "other-machine" || kind == "container" ? 1 : getpid();
    if (kind == "other-machine") {
        std::string name = "another-machine";
        char* names = name.data();
        XTextProperty machine{};
        XStringListToTextProperty(&names, 1, &machine);
        XSetWMClientMachine(display, window, &machine);
        XFree(machine.value);
    }
    if (kind != "no-process") {
        XChangeProperty(display, window, XInternAtom(display, "_NET_WM_PID", False), XA_CARDINAL, 32,
                        PropModeReplace, reinterpret_cast<const unsigned char*>(&process), 1);
    }
    if (kind == "inner-focus") {
        const Window inner = XCreateSimpleWindow(display, window, 0, 0, 50, 50, 0, 0, 0);
        XSelectInput(display, inner, KeyPressMask | KeyReleaseMask);
        XMapWindow(display, inner);
        std::printf("inner %lu\n", inner);
    }
    if (owner != None) {
        XSetTransientForHint(display, window, owner);
    }
    XSelectInput(display, window, KeyPressMask | KeyReleaseMask | FocusChangeMask | StructureNotifyMask);
    XMapWindow(display, window);
    return window;
}

void makeWindows(Display* display, char* className, char* instance, std::string_view kind) {
    passOverUsedNumbers(display);
    const Window first = makeWindow(display, className, instance, kind);
    if (kind == "second-window" || kind == "dialog") {
        makeWindow(display, className, instance, kind, kind == "dialog" ? first : None);
    }
}

/// For the text of this moment, whenever the key was pressed: the hardest case for whoever offers it.
void fetchClipboard(Display* display, Window window, bool isLate) {
    if (isLate) {
        usleep(300'000);
    }
    XConvertSelection(display, XInternAtom(display, "CLIPBOARD", False),
                      XInternAtom(display, "UTF8_STRING", False), XInternAtom(display, "TEXT", False), window,
                      CurrentTime);
}

void tellFetched(const XSelectionEvent& event) {
    Atom type = None;
    int format = 0;
    unsigned long length = 0;
    unsigned long rest = 0;
    unsigned char* text = nullptr;
    if (event.property != None) {
        XGetWindowProperty(event.display, event.requestor, event.property, 0, 10000, True, AnyPropertyType,
                           &type, &format, &length, &rest, &text);
    }
    std::printf("text %s\n", text != nullptr ? reinterpret_cast<const char*>(text) : "refused");
    XFree(text);
}

void tell(XEvent& event, std::string_view kind) {
    if (event.type == MapNotify) {
        std::printf("window %lu\n", event.xmap.window);
    } else if (event.type == FocusIn && event.xfocus.detail != NotifyPointer) {
        std::printf("focus\n");
    } else if (event.type == KeyPress || event.type == KeyRelease) {
        std::array<char, 32> text{};
        KeySym keysym = NoSymbol;
        const unsigned held = event.xkey.state;
        XLookupString(&event.xkey, text.data(), static_cast<int>(text.size()), &keysym, nullptr);
        const char* const name = XKeysymToString(keysym);
        std::printf("%s %s 0x%x\n", event.type == KeyPress ? "press" : "release",
                    name != nullptr ? name : "?", held);
        if (kind.starts_with("pastes") && event.type == KeyPress && (keysym == XK_Insert || keysym == XK_v)) {
            fetchClipboard(event.xkey.display, event.xkey.window, kind == "pastes-late");
        }
    } else if (event.type == SelectionNotify) {
        tellFetched(event.xselection);
    } else if (event.type == MappingNotify) {
        XRefreshKeyboardMapping(&event.xmapping);
    }
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    Display* const display = XOpenDisplay(nullptr);
    if (display == nullptr || argc < 2) {
        return 1;
    }
    const std::string_view kind = argc > 3 ? argv[3] : "";
    makeWindows(display, argv[1], argv[argc > 2 ? 2 : 1], kind);
    while (true) {
        while (XPending(display) > 0) {
            XEvent event;
            XNextEvent(display, &event);
            tell(event, kind);
        }
        std::array<pollfd, 2> sources{{{ConnectionNumber(display), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}}};
        poll(sources.data(), sources.size(), -1);
        if (sources[1].revents != 0) {
            return 0;
        }
    }
}
