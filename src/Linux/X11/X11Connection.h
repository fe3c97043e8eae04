// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"

#include <functional>
#include <map>
#include <memory>
#include <string>

// Xlib's types by name alone: its header defines macros with everyday names, which no other header survives.
struct _XDisplay;
union _XEvent;

class QSocketNotifier;

namespace tovik {

/// Frees what Xlib gave, by the function that belongs to it.
template <auto Free>
struct X11Deleter {
    template <typename T>
    void operator()(T* resource) const {
        Free(resource);
    }
};

template <typename T, auto Free>
using X11Handle = std::unique_ptr<T, X11Deleter<Free>>;

/// One connection to the X server, apart from the user interface's own. Errors that the server reports, such
/// as for a window that has just gone, never end the program: the request that failed yields nothing. A
/// server that goes away leaves the connection broken; requests then do nothing. Main thread.
class X11Connection {
public:
    /// An empty name means the session's display.
    static Result<std::unique_ptr<X11Connection>> open(const std::string& displayName = {});

    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;
    ~X11Connection();

    [[nodiscard]] _XDisplay* display() const { return display_; }
    [[nodiscard]] unsigned long root() const { return root_; }
    [[nodiscard]] int descriptor() const;
    [[nodiscard]] bool broken() const { return broken_; }

    /// The server's number for a name.
    [[nodiscard]] unsigned long atom(const std::string& name);

    /// Waits until the server has carried out all that was asked on this connection.
    void sync();

    /// The server's time of now, in the milliseconds of its events. Not on a connection that is watched.
    [[nodiscard]] unsigned long serverTime();

private:
    explicit X11Connection(_XDisplay* display);

    _XDisplay* display_;
    unsigned long root_ = 0;
    bool broken_ = false;
    std::map<std::string, unsigned long> atoms_;
    /// A window of ours that is never shown; changing a property of it tells the server's time.
    unsigned long clockWindow_ = 0;
};

/// Hands over the events of a connection as they come, on the main thread. The connection must carry no
/// requests that wait for an answer, except through catchUp(): an answer brings events with it, of which
/// nothing would tell the event loop.
class X11EventWatch {
public:
    /// Both arguments outlive the watch.
    X11EventWatch(X11Connection& connection, std::function<void(_XEvent&)> handler);
    X11EventWatch(const X11EventWatch&) = delete;
    X11EventWatch& operator=(const X11EventWatch&) = delete;
    ~X11EventWatch();

    /// Hands over, before it returns, everything that happened on the server up to this call.
    void catchUp();

private:
    void dispatchPending();

    X11Connection& connection_;
    std::function<void(_XEvent&)> handler_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

/// What an X session lets a program do with its keys.
struct X11Session {
    /// Every key press of the session can be observed (XInput 2.2).
    bool canSeeKeys = false;
    /// Keys can be pressed on the user's behalf (XTest).
    bool canPressKeys = false;
    /// The session is shown by a Wayland compositor: keys are seen, and pressed, only while a program that
    /// uses X has the keyboard.
    bool underWayland = false;
    /// For the user: what cannot work here and why; empty when all works.
    std::string sentence;

    /// Whether dictation can work at all: the talk key is seen and the text can be pasted.
    [[nodiscard]] bool usable() const { return canSeeKeys && canPressKeys; }

    bool operator==(const X11Session&) const = default;

    /// Looks at a display; an empty name means the session's own. Always answers: without a display nothing
    /// works, and the sentence says so.
    static X11Session examine(const std::string& displayName = {});
    static X11Session examine(X11Connection& connection);

    static Error noDisplayError();
};

} // namespace tovik
