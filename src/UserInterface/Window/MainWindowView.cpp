// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/MainWindowView.h"

#include "UserInterface/Controls/Buttons.h"
#include "UserInterface/Controls/Fields.h"
#include "UserInterface/Controls/Painting.h"
#include "UserInterface/Controls/Theme.h"
#include "UserInterface/Window/HeaderView.h"
#include "UserInterface/Window/MainWindowLayout.h"
#include "UserInterface/Window/ToastView.h"

#include <QEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLinearGradient>
#include <QPaintEvent>
#include <QPainter>
#include <QResizeEvent>
#include <QScrollArea>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>

namespace tovik {

namespace {

constexpr int kContentWidth = static_cast<int>(mainContentWidth);
constexpr int kTopSpace = 14;
constexpr int kFooterSpace = 14;
constexpr double kFooterTextSize = 11;
constexpr double kVersionAlpha = 0.68;
constexpr double kFooterSymbolSize = 12;
constexpr int kFooterSpacing = 16;
constexpr int kLinkPaddingX = 4;
constexpr int kLinkPaddingY = 3;

} // namespace

StickyHeaderFadeView::StickyHeaderFadeView(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void StickyHeaderFadeView::setColor(const QColor& color) {
    color_ = color;
    update();
}

void StickyHeaderFadeView::setAlpha(double alpha) {
    if (alpha_ != alpha) {
        alpha_ = alpha;
        update();
    }
}

void StickyHeaderFadeView::paintEvent(QPaintEvent* /*event*/) {
    QColor end = color_;
    end.setAlpha(0);
    QLinearGradient gradient(0, 0, 0, height());
    gradient.setColorAt(0, color_);
    gradient.setColorAt(1, end);
    QPainter painter(this);
    painter.setOpacity(alpha_);
    painter.fillRect(rect(), gradient);
}

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

FooterView::FooterView(const QString& version, QWidget* parent)
    : QWidget(parent),
      version_(new QLabel(QStringLiteral("Tovik Record v") + version)),
      updates_(new HoverLinkButton),
      website_(new HoverLinkButton) {
    version_->setFont(theme::font(kFooterTextSize));

    updates_->setText(QStringLiteral("Check for updates"));
    updates_->describe(QStringLiteral("Check for updates"),
                       QStringLiteral("Open the Tovik Record download page to check for the latest version"));

    website_->setText(QStringLiteral("Tovik AI"));
    website_->setSymbol(QStringLiteral("waveform"), kFooterSymbolSize);
    website_->describe(QStringLiteral("Tovik AI website"), QStringLiteral("Open tovik.example"));

    auto* row = makeTightLayout<QHBoxLayout>(this, kFooterSpacing);
    row->addStretch();
    row->addWidget(version_);
    for (HoverLinkButton* link : {updates_, website_}) {
        link->setFont(theme::font(kFooterTextSize, FontWeight::medium));
        link->setContentPadding(kLinkPaddingX, kLinkPaddingY);
        row->addWidget(link);
    }
    row->addStretch();
    applyColors();
}

void FooterView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange) {
        applyColors();
    }
    QWidget::changeEvent(event);
}

void FooterView::applyColors() {
    const QPalette desktop = QGuiApplication::palette();
    const QColor background = theme::windowBackground(desktop);
    QPalette palette = desktop;
    palette.setColor(QPalette::WindowText, theme::readableLabelColor(desktop, background, kVersionAlpha));
    version_->setPalette(palette);
    for (HoverLinkButton* link : {updates_, website_}) {
        link->setContentTint(theme::accentOn(background));
    }
}

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
    fade_->setColor(theme::windowBackground(QGuiApplication::palette()));
    update();
}

void MainWindowView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::windowBackground(QGuiApplication::palette()));
}

} // namespace tovik
