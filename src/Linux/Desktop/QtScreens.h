// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Screens.h"

namespace tovik {

/// The monitors as Qt knows them. After the QGuiApplication.
class QtScreens : public Screens {
public:
    /// The primary monitor.
    [[nodiscard]] std::optional<Screen> mainScreen() const override;
    [[nodiscard]] std::vector<Screen> screens() const override;
    [[nodiscard]] Point pointerLocation() const override;
};

} // namespace tovik
