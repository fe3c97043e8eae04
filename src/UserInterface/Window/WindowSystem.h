// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

struct xcb_connection_t;

namespace tovik::windowsystem {

/// Qt's connection to the X server; null on other window systems.
[[nodiscard]] xcb_connection_t* x11Connection();

/// Returns when the window system has carried out all that Qt has asked of it so far, such as showing a
/// window. Handles no events.
void waitForRequests();

} // namespace tovik::windowsystem
