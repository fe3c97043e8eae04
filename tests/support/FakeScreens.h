// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Screens.h"

#include <optional>
#include <utility>
#include <vector>

namespace tovik::test {

/// Monitors as the test arranges them: at first one of 1920 x 1080 with a panel of 30 pixels on top, the
/// pointer in its middle.
class FakeScreens : public Screens {
public:
    [[nodiscard]] std::optional<Screen> mainScreen() const override {
        return screens_.empty() ? std::nullopt : std::optional(screens_.front());
    }
    [[nodiscard]] std::vector<Screen> screens() const override { return screens_; }
    [[nodiscard]] Point pointerLocation() const override { return pointer_; }

    /// The first one is the main screen; an empty list is a machine without a monitor.
    void setScreens(std::vector<Screen> screens) { screens_ = std::move(screens); }
    void setPointerLocation(Point pointer) { pointer_ = pointer; }

private:
    std::vector<Screen> screens_{{Rect{0, 0, 1920, 1080}, Rect{0, 30, 1920, 1050}}};
    Point pointer_{960, 540};
};

} // namespace tovik::test
