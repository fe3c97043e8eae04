// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UserInterface/Controls/BorderlessButton.h"

namespace tovik {

/// A button that reads like a link: its text gets a line beneath while the pointer is over it. It may lie on
/// a ground that shows how far it reaches.
class HoverLinkButton : public BorderlessButton {
    Q_OBJECT

public:
    using BorderlessButton::BorderlessButton;

    /// A soft ground in the colour of the content; none at first.
    void setHasGround(bool hasGround);

protected:
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void paintGround(QPainter& painter) override;

private:
    void setUnderlined(bool underlined);

    bool hasGround_ = false;
};

} // namespace tovik
