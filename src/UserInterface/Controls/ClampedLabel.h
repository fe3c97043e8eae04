// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>
#include <QStringList>

namespace tovik {

/// A text in a few lines at most, which ends in an ellipsis where they do not hold all of it. The whole text
/// is still its text. Costs the same for a text of any length.
class ClampedLabel : public QLabel {
    Q_OBJECT

public:
    explicit ClampedLabel(int mostLines, QWidget* parent = nullptr);

    /// What shows at this width, line by line.
    [[nodiscard]] QStringList shownLines(int width) const;

    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const int mostLines_;
};

} // namespace tovik
