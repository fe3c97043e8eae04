// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/FlippedDocumentView.h"

#include "UserInterface/Window/MainWindowGeometry.h"
#include "UserInterface/Controls/ShadowPainter.h"
#include "UserInterface/Controls/Theme.h"

#include <QPaintEvent>
#include <QPainter>
#include <QResizeEvent>
#include <QVBoxLayout>

#include <algorithm>

namespace tovik {

namespace {

constexpr int kContentWidth = static_cast<int>(mainContentWidth);
constexpr int kTopSpace = 14;
constexpr int kFooterSpace = 14;

} // namespace

FlippedDocumentView::FlippedDocumentView(QWidget* parent) : QWidget(parent), stack_(new QVBoxLayout(this)) {
    stack_->setSpacing(theme::kCardSpacing);
    centreColumn(static_cast<int>(mainWindowWidth));
}

void FlippedDocumentView::centreColumn(int width) {
    const int before = std::max(0, (width - kContentWidth) / 2);
    const int after = std::max(0, width - kContentWidth - before);
    stack_->setContentsMargins(before, kTopSpace, after, 0);
}

void FlippedDocumentView::resizeEvent(QResizeEvent* event) {
    centreColumn(event->size().width());
    QWidget::resizeEvent(event);
}

void FlippedDocumentView::addCard(QWidget* card) {
    stack_->addWidget(card);
    cards_.append(card);
}

void FlippedDocumentView::addFooter(QWidget* footer) {
    stack_->addSpacing(kFooterSpace - theme::kCardSpacing);
    stack_->addWidget(footer);
    stack_->addStretch();
}

int FlippedDocumentView::fittingHeight() const {
    stack_->activate();
    return stack_->hasHeightForWidth() ? stack_->totalHeightForWidth(std::max(width(), kContentWidth))
                                       : stack_->totalSizeHint().height();
}

void FlippedDocumentView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    for (const QWidget* card : cards_) {
        paintShadow(painter, card->geometry(), theme::kCardCornerRadius, theme::kCardShadow);
    }
}

} // namespace tovik
