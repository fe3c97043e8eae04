// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/History/HoverRevealView.h"

#include <QEvent>
#include <QGraphicsOpacityEffect>

namespace tovik {

HoverRevealView::HoverRevealView(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_Hover);
}

void HoverRevealView::setRevealed(QWidget* control) {
    revealed_ = control;
    effect_ = new QGraphicsOpacityEffect(control);
    control->setGraphicsEffect(effect_);
    control->installEventFilter(this);
    refresh();
}

bool HoverRevealView::isRevealing() const {
    return isHovered_ || (revealed_ && revealed_->hasFocus());
}

bool HoverRevealView::event(QEvent* event) {
    if (event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverLeave) {
        isHovered_ = event->type() == QEvent::HoverEnter;
        refresh();
    }
    return QWidget::event(event);
}

bool HoverRevealView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
        refresh();
    }
    return QWidget::eventFilter(watched, event);
}

void HoverRevealView::refresh() {
    if (effect_) {
        effect_->setOpacity(isRevealing() ? 1 : 0);
    }
}

} // namespace tovik
