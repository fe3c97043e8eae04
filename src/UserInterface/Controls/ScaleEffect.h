// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QGraphicsEffect>

namespace tovik {

/// Shows a widget smaller or larger than it is, around its centre and within its own bounds. Free of charge
/// at scale 1.
class ScaleEffect : public QGraphicsEffect {
    Q_OBJECT

public:
    explicit ScaleEffect(QObject* parent);

    void setScale(double scale);
    [[nodiscard]] double scale() const { return scale_; }

protected:
    void draw(QPainter* painter) override;

private:
    double scale_ = 1;
};

} // namespace tovik
