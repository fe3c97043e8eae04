// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QGraphicsOpacityEffect;

namespace tovik {

/// Holds controls that stay out of sight until the pointer is over the view or one of its controls has the
/// keyboard. Assistive programs and the Tab key find them all the same.
class HoverRevealView : public QWidget {
    Q_OBJECT

public:
    explicit HoverRevealView(QWidget* parent = nullptr);

    /// The control that is revealed; it must be inside this view. One at a time.
    void setRevealed(QWidget* control);

    [[nodiscard]] bool isRevealing() const;

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void refresh();

    QWidget* revealed_ = nullptr;
    QGraphicsOpacityEffect* effect_ = nullptr;
    bool isHovered_ = false;
};

} // namespace tovik
