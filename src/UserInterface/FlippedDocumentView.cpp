// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/FlippedDocumentView.h"

#include "UserInterface/MainWindowGeometry.h"
#include "UserInterface/ShadowPainter.h"
#include "UserInterface/Theme.h"

#include <QPaintEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace tovik {

namespace {

constexpr int kContentWidth = static_cast<int>(mainContentWidth);
constexpr int kTopSpace = 14;
constexpr int kFooterSpace = 14;

} // namespace

FlippedDocumentView::FlippedDocumentView(QWidget* parent) : QWidget(parent), stack_(new QVBoxLayout) {
    auto* column = new QWidget;
    column->setFixedWidth(kContentWidth);
    column->setLayout(stack_);
    stack_->setContentsMargins(0, kTopSpace, 0, 0);
    stack_->setSpacing(theme::kCardSpacing);

    auto* centring = new QVBoxLayout(this);
    centring->setContentsMargins(0, 0, 0, 0);
    centring->addWidget(column, 0, Qt::AlignHCenter);
    centring->addStretch();
}

void FlippedDocumentView::addCard(QWidget* card) {
    stack_->addWidget(card);
    cards_.append(card);
}

void FlippedDocumentView::addFooter(QWidget* footer) {
    stack_->addSpacing(kFooterSpace - theme::kCardSpacing);
    stack_->addWidget(footer);
}

int FlippedDocumentView::fittingHeight() const {
    stack_->activate();
    return stack_->hasHeightForWidth() ? stack_->totalHeightForWidth(kContentWidth)
                                       : stack_->totalSizeHint().height();
}

void FlippedDocumentView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    for (const QWidget* card : cards_) {
        const QRect shape(card->mapTo(this, QPoint(0, 0)), card->size());
        paintShadow(painter, shape, theme::kCardCornerRadius, theme::kCardShadow);
    }
}

} // namespace tovik
