// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QGraphicsEffect>

class QWidget;

namespace tovik {

/// Shows a view and all in it as one sheet of this opacity. Costs what can be seen of the view, however large
/// that is: Qt's own effect makes a picture of the whole.
class FadeEffect : public QGraphicsEffect {
    Q_OBJECT

public:
    /// For this view, which owns it.
    explicit FadeEffect(QWidget& view);

    void setOpacity(double opacity);

protected:
    void draw(QPainter* painter) override;

private:
    QWidget& view_;
    double opacity_ = 1;
};

} // namespace tovik
