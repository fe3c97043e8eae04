// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QScrollBar>

namespace tovik {

/// A slim scroll bar that lies over what it scrolls and takes no room of its own. Only there when there is
/// something to scroll. Mirrors another scroll bar.
class OverlayScrollBar : public QScrollBar {
    Q_OBJECT

public:
    OverlayScrollBar(QScrollBar& mirrored, QWidget* parent);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void adoptRange();

    QScrollBar& mirrored_;
};

} // namespace tovik
