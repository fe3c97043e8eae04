// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UserInterface/Controls/Rgba.h"

#include <QWidget>

namespace tovik {

/// A rounded ground that comes and goes beneath what lies on it. Out of sight at first; takes no clicks.
class HighlightView : public QWidget {
    Q_OBJECT

public:
    HighlightView(const Rgba& color, double cornerRadius, QWidget* parent);

    void setAlpha(double alpha);
    [[nodiscard]] double alpha() const { return alpha_; }

    /// A ring around it that says that the keyboard is here; seen also while the ground is not.
    void setRing(bool hasRing);
    [[nodiscard]] bool hasRing() const { return hasRing_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Rgba color_;
    const double cornerRadius_;
    double alpha_ = 0;
    bool hasRing_ = false;
};

} // namespace tovik
