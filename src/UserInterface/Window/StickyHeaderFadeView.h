// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QWidget>

namespace tovik {

/// The band beneath the header into which the cards seem to dip. Takes no clicks.
class StickyHeaderFadeView : public QWidget {
    Q_OBJECT

public:
    explicit StickyHeaderFadeView(QWidget* parent = nullptr);

    /// The colour at the upper edge, from which the band fades to nothing.
    void setColor(const QColor& color);

    void setAlpha(double alpha);
    [[nodiscard]] double alpha() const { return alpha_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor color_ = Qt::white;
    double alpha_ = 1;
};

} // namespace tovik
