// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/AccordionCard.h"

#include "UserInterface/Controls/BorderlessButton.h"
#include "UserInterface/Controls/FadeEffect.h"
#include "UserInterface/Controls/HoverFillButton.h"
#include "UserInterface/Controls/SymbolImage.h"
#include "UserInterface/Controls/SymbolView.h"
#include "UserInterface/Controls/Theme.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPaintEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace tovik {

namespace {

// Where the content begins below the card's top: the badge's lower edge and the space after it.
constexpr int kContentBegin = theme::kCardHeaderCentre + theme::kBadgeSize / 2 + theme::kContentTop;

QColor label(double alpha) {
    const Rgba full = theme::labelColor(QGuiApplication::palette(), theme::kCardBackground);
    return theme::color(full.withAlpha(alpha));
}

} // namespace

AccordionCard::AccordionCard(const SectionHeader& header, QWidget* content, QWidget* parent)
    : QWidget(parent),
      content_(content) {
    setPalette(theme::cardPalette(QGuiApplication::palette()));
    setObjectName(QString::fromStdString(header.title));

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(makeHeader(header));

    contentPlace_ = new QWidget;
    auto* placeLayout = new QVBoxLayout(contentPlace_);
    placeLayout->setContentsMargins(theme::kContentSide, 0, theme::kContentSide, theme::kContentBottom);
    placeLayout->addWidget(content);
    layout->addWidget(contentPlace_);
    layout->addStretch();

    contentEffect_ = new FadeEffect(*contentPlace_);
    contentPlace_->setGraphicsEffect(contentEffect_);
    setContentHidden(true);
    setContentAlpha(0);
    setCollapsedHeightActive(true);
}

QWidget* AccordionCard::makeHeader(const SectionHeader& header) {
    const QString title = QString::fromStdString(header.title);
    const QColor symbolColor = theme::color(header.symbolColor);

    auto* badge = new SymbolView(QString::fromStdString(header.symbolName),
                                 {theme::kBadgeSymbolSize, theme::kBadgeSymbolSize}, symbolColor);
    badge->setFixedSize(theme::kBadgeSize, theme::kBadgeSize);
    badge->setGround(theme::color(header.symbolColor.withAlpha(theme::kBadgeBackgroundAlpha)),
                     theme::kBadgeCornerRadius);

    titleButton_ = new BorderlessButton;
    titleButton_->setText(title);
    titleButton_->setFont(theme::font(theme::kSectionTitleSize, FontWeight::semibold));
    titleButton_->setContentTint(label(theme::kSectionTitleAlpha));
    titleButton_->setContentAlignment(Qt::AlignLeading);
    titleButton_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    registerButton(*titleButton_, title);

    auto* subtitle = new QLabel(QString::fromStdString(header.subtitle));
    subtitle->setFont(theme::font(theme::kSectionSubtitleSize));
    QPalette subtitlePalette = subtitle->palette();
    subtitlePalette.setColor(QPalette::WindowText, label(theme::kSectionSubtitleAlpha));
    subtitle->setPalette(subtitlePalette);

    chevron_ = new HoverFillButton;
    chevron_->setFixedSize(theme::kChevronSize, theme::kChevronSize);
    chevron_->setContentTint(label(theme::kChevronAlpha));
    registerButton(*chevron_, title);
    setChevronExpanded(false);

    auto* text = new QVBoxLayout;
    text->setSpacing(1);
    text->addStretch();
    text->addWidget(titleButton_);
    text->addWidget(subtitle);
    text->addStretch();

    auto* headerView = new QWidget;
    headerView->setFixedHeight(kContentBegin);
    auto* row = new QHBoxLayout(headerView);
    // The header's parts are centred a little above the middle of the space up to the content.
    row->setContentsMargins(0, 2 * theme::kCardHeaderCentre - kContentBegin, 0, 0);
    row->setSpacing(0);
    // Spaces are mirrored for languages that run from right to left; margins would not be.
    row->addSpacing(theme::kBadgeLeading);
    row->addWidget(badge);
    row->addSpacing(theme::kBadgeToText);
    row->addLayout(text, 1);
    row->addSpacing(theme::kTextToChevron);
    row->addWidget(chevron_);
    row->addSpacing(theme::kChevronTrailing);
    return headerView;
}

void AccordionCard::registerButton(BorderlessButton& button, const QString& title) {
    button.setObjectName(title);
    button.describe(title + QStringLiteral(" section"),
                    QStringLiteral("Expand or collapse %1 settings").arg(title));
    connect(&button, &QPushButton::clicked, this,
            [this, &button] { emit toggleRequested(button.objectName()); });
}

bool AccordionCard::isContentHidden() const {
    return contentPlace_->isHidden();
}

void AccordionCard::setContentHidden(bool hidden) {
    contentPlace_->setHidden(hidden);
}

void AccordionCard::setContentAlpha(double alpha) {
    contentAlpha_ = alpha;
    contentEffect_->setOpacity(alpha);
    // Drawing through the effect costs a picture of the content each time.
    contentEffect_->setEnabled(alpha < 1);
}

void AccordionCard::setCollapsedHeightActive(bool active) {
    // Open, the content says how low the card may be; a height of its own would let the content be crushed.
    setMinimumHeight(active ? theme::kCardHeaderHeight : 0);
    setMaximumHeight(active ? theme::kCardHeaderHeight : QWIDGETSIZE_MAX);
}

bool AccordionCard::isCollapsedHeightActive() const {
    return maximumHeight() == theme::kCardHeaderHeight;
}

void AccordionCard::setChevronExpanded(bool expanded) {
    titleButton_->setExpanded(expanded);
    chevron_->setExpanded(expanded);
    chevron_->setSymbol(expanded ? QStringLiteral("chevron.down") : QStringLiteral("chevron.right"),
                        theme::kChevronSymbolSize);
}

void AccordionCard::layOut() {
    contentPlace_->layout()->activate();
    layout()->activate();
    updateGeometry();
}

void AccordionCard::paintEvent(QPaintEvent* /*event*/) {
    constexpr double inset = theme::kCardBorderWidth / 2;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme::color(theme::kCardBorder), theme::kCardBorderWidth));
    painter.setBrush(theme::color(theme::kCardBackground));
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset),
                            theme::kCardCornerRadius - inset, theme::kCardCornerRadius - inset);
}

} // namespace tovik
