// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <vector>

namespace tovik {

/// In device-independent pixels. The origin of the desktop is its top left corner; y grows downwards.
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    [[nodiscard]] double midX() const { return x + width / 2; }
    [[nodiscard]] double midY() const { return y + height / 2; }
    [[nodiscard]] double right() const { return x + width; }
    [[nodiscard]] double bottom() const { return y + height; }

    bool operator==(const Rect&) const = default;
};

struct Point {
    double x = 0;
    double y = 0;

    bool operator==(const Point&) const = default;
};

struct Screen {
    Rect frame;
    /// Without panels and docks.
    Rect visibleFrame;

    bool operator==(const Screen&) const = default;
};

/// The monitors and the pointer. Main thread.
class Screens {
public:
    virtual ~Screens() = default;

    [[nodiscard]] virtual std::optional<Screen> mainScreen() const = 0;
    [[nodiscard]] virtual std::vector<Screen> screens() const = 0;
    [[nodiscard]] virtual Point pointerLocation() const = 0;
};

} // namespace tovik
