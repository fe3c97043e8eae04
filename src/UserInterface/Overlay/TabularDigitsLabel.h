// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>

namespace tovik {

/// A line of text whose digits are all equally wide, so that a running time does not tremble.
class TabularDigitsLabel : public QLabel {
    Q_OBJECT

public:
    using QLabel::QLabel;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

    /// Where each character of the text begins, from the left, and at the last where the text ends.
    [[nodiscard]] QList<double> characterPositions() const;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace tovik
