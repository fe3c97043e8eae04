// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/X11/XlibTypes.h"
#include "Platform/Result.h"

#include <map>
#include <memory>
#include <string>

namespace tovik {

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

private:
    explicit X11Connection(_XDisplay* display);

    _XDisplay* display_;
    unsigned long root_ = 0;
    bool broken_ = false;
    std::map<std::string, unsigned long> atoms_;
};

} // namespace tovik
