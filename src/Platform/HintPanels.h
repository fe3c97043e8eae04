// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Clock.h"
#include "Platform/Screens.h"

#include <functional>
#include <memory>
#include <string>

namespace tovik {

enum class FontWeight { regular, medium, semibold };

/// A line of text on a small dark panel near the bottom of the screen.
struct HintDescription {
    std::string text;
    Rect frame;
    double fontSize = 0;
    FontWeight weight = FontWeight::regular;
    /// Brightness of the text, 0 black to 1 white.
    double textWhite = 1;

    bool operator==(const HintDescription&) const = default;
};

/// A hint on screen; dropping it takes it away at once.
class HintPanel {
public:
    virtual ~HintPanel() = default;

    virtual void fadeIn(Seconds duration) = 0;
    /// Calls completion when the panel is gone.
    virtual void fadeOut(Seconds duration, std::function<void()> completion) = 0;
};

/// Makes hint panels: above every window, not clickable, never focused. Main thread.
class HintPanels {
public:
    virtual ~HintPanels() = default;

    [[nodiscard]] virtual std::unique_ptr<HintPanel> makePanel(const HintDescription& description) = 0;
};

} // namespace tovik
