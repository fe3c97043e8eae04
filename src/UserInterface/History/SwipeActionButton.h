// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UserInterface/Controls/BorderlessButton.h"

namespace tovik {

/// The action that shows beside a row that was swiped aside: white on a colour that warns.
class SwipeActionButton : public BorderlessButton {
    Q_OBJECT

public:
    explicit SwipeActionButton(const QString& title, QWidget* parent = nullptr);

protected:
    void paintGround(QPainter& painter) override;
};

} // namespace tovik
