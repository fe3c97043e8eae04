// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/MainWindowView.h"

#include "UserInterface/Window/FlippedDocumentView.h"
#include "UserInterface/Window/HeaderView.h"
#include "UserInterface/Window/MainWindowGeometry.h"
#include "UserInterface/Window/OverlayScrollBar.h"
#include "UserInterface/Window/StickyHeaderFadeView.h"
#include "UserInterface/Controls/Theme.h"
#include "UserInterface/Window/ToastView.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPainter>
#include <QScrollArea>
#include <QStyle>

namespace tovik {

MainWindowView::MainWindowView(const Clock& clock, MainQueue& queue, QWidget* parent)
    : QWidget(parent),
      header_(new HeaderView(queue, this)),
      document_(new FlippedDocumentView) {
    scroll_ = new QScrollArea(this);
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setWidgetResizable(true);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll_->setFocusPolicy(Qt::NoFocus);
    scroll_->viewport()->setAutoFillBackground(false);
    scroll_->setWidget(document_);
    document_->setAutoFillBackground(false);

    fade_ = new StickyHeaderFadeView(this);
    scrollBar_ = new OverlayScrollBar(*scroll_->verticalScrollBar(), this);
    toast_ = new ToastView(clock, queue, this);

    connect(scroll_->verticalScrollBar(), &QScrollBar::valueChanged, this, &MainWindowView::handleMainScroll);
    handleMainScroll();
    applyColors();
}

int MainWindowView::stackFittingHeight() const {
    return theme::kHeaderHeight - theme::kStackTop + document_->fittingHeight();
}

void MainWindowView::scrollToTop() {
    setScrollOffset(0);
}

int MainWindowView::scrollOffset() const {
    return scroll_->verticalScrollBar()->value();
}

void MainWindowView::setScrollOffset(int offset) {
    scroll_->verticalScrollBar()->setValue(offset);
}

void MainWindowView::handleMainScroll() {
    fade_->show();
    fade_->setAlpha(headerFadeAlpha(scrollOffset()));
}

void MainWindowView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const int headerHeight = theme::kHeaderHeight;
    header_->setGeometry(0, 0, width(), headerHeight);
    scroll_->setGeometry(0, headerHeight, width(), height() - headerHeight);
    fade_->setGeometry(0, headerHeight, width(), theme::kHeaderFadeHeight);
    const int barWidth = scrollBar_->sizeHint().width();
    const QRect bar(width() - barWidth, headerHeight, barWidth, height() - headerHeight);
    scrollBar_->setGeometry(QStyle::visualRect(layoutDirection(), rect(), bar));
}

void MainWindowView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange) {
        applyColors();
    }
    QWidget::changeEvent(event);
}

void MainWindowView::applyColors() {
    fade_->setColor(theme::color(theme::windowBackground(QGuiApplication::palette())));
    update();
}

void MainWindowView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::color(theme::windowBackground(QGuiApplication::palette())));
}

} // namespace tovik
