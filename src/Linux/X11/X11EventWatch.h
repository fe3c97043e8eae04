// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/X11/XlibTypes.h"

#include <functional>
#include <memory>

class QSocketNotifier;

namespace tovik {

class X11Connection;

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

} // namespace tovik
