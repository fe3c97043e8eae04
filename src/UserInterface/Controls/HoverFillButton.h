// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UserInterface/Controls/BorderlessButton.h"

namespace tovik {

/// A button, mostly a symbol alone, that gets a soft ground while the pointer is over it or it is pressed.
class HoverFillButton : public BorderlessButton {
    Q_OBJECT

public:
    using BorderlessButton::BorderlessButton;

    /// How strong the ground is just now, 0...1.
    [[nodiscard]] double fillAlpha() const;

protected:
    void paintGround(QPainter& painter) override;
};

} // namespace tovik
