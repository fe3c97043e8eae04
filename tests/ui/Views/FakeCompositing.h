// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UserInterface/Controls/WindowSystem.h"

namespace tovik::test {

/// A desktop with or without translucent windows, as the test says.
class FakeCompositing : public Compositing {
public:
    [[nodiscard]] bool isActive() const override { return active; }

    bool active = true;
};

} // namespace tovik::test
