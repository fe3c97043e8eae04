// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

struct xcb_connection_t;

namespace tovik {

/// Qt's connection to the X server; null on other window systems.
[[nodiscard]] xcb_connection_t* x11Connection();

/// An X atom by its name; 0 on other window systems.
[[nodiscard]] std::uint32_t x11Atom(const std::string& name);

/// Whether a program owns the X selection, as those do that offer something to all others.
[[nodiscard]] bool isX11SelectionOwned(std::uint32_t selection);

/// Returns when the window system has carried out all that Qt has asked of it so far, such as showing a
/// window. Handles no events.
void waitForWindowRequests();

/// Whether windows can be translucent right now. Main thread.
class Compositing {
public:
    virtual ~Compositing() = default;

    [[nodiscard]] virtual bool isActive() const = 0;
};

/// Asks the X server for a compositing manager. A session of another kind always composites.
class DesktopCompositing : public Compositing {
public:
    [[nodiscard]] bool isActive() const override;
};

} // namespace tovik
