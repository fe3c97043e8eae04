// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Screens.h"

namespace tovik {

struct Size {
    double width = 0;
    double height = 0;

    bool operator==(const Size&) const = default;
};

/// Where the top left corner of a recording overlay of this size belongs: in the middle of the screen with
/// the pointer, 30 above the bottom of what panels and docks leave free.
[[nodiscard]] Point overlayOrigin(const Screens& screens, Size size);

/// Whether moving from one place to the other is worth it: more than one point on either axis.
[[nodiscard]] bool isWorthMoving(Point from, Point to);

} // namespace tovik
