// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/Accordion.h"

#include "UserInterface/Controls/Buttons.h"
#include "UserInterface/Controls/Fields.h"
#include "UserInterface/Controls/Painting.h"
#include "UserInterface/Controls/Theme.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPaintEvent>
#include <QPainter>
#include <QPixmap>
#include <QVBoxLayout>
#include <QWidget>

#include <utility>

namespace tovik {

FadeEffect::FadeEffect(QWidget& view) : QGraphicsEffect(&view), view_(view) {}

void FadeEffect::setOpacity(double opacity) {
    if (opacity_ != opacity) {
        opacity_ = opacity;
        update();
    }
}

void FadeEffect::draw(QPainter* painter) {
    const QRect seen = view_.visibleRegion().boundingRect();
    if (opacity_ <= 0 || seen.isEmpty()) {
        return;
    }
    const double ratio = painter->device()->devicePixelRatioF();
    QPixmap sheet(seen.size() * ratio);
    sheet.setDevicePixelRatio(ratio);
    sheet.fill(Qt::transparent);
    // Within draw() the view paints itself as if it had no effect.
    view_.render(&sheet, QPoint(), QRegion(seen), QWidget::DrawChildren);
    painter->setOpacity(painter->opacity() * opacity_);
    painter->drawPixmap(seen.topLeft(), sheet);
}

namespace {

// Where the content begins below the card's top: the badge's lower edge and the space after it.
constexpr int kContentBegin = theme::kCardHeaderCentre + theme::kBadgeSize / 2 + theme::kContentTop;

QColor label(double alpha) {
    const QColor full = theme::labelColor(QGuiApplication::palette(), theme::kCardBackground);
    return theme::withAlpha(full, alpha);
}

QWidget* makeBadge(const SectionHeader& header) {
    auto* badge = new SymbolView(QString::fromStdString(header.symbolName),
                                 {theme::kBadgeSymbolSize, theme::kBadgeSymbolSize}, header.symbolColor);
    badge->setFixedSize(theme::kBadgeSize, theme::kBadgeSize);
    badge->setGround(theme::withAlpha(header.symbolColor, theme::kBadgeBackgroundAlpha),
                     theme::kBadgeCornerRadius);
    return badge;
}

} // namespace

AccordionCard::AccordionCard(const SectionHeader& header, QWidget* content, QWidget* parent)
    : QWidget(parent),
      content_(content) {
    setPalette(theme::cardPalette(QGuiApplication::palette()));
    setObjectName(QString::fromStdString(header.title));

    auto* layout = makeTightLayout<QVBoxLayout>(this, 0);
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
    makeButtons(QString::fromStdString(header.title));
    auto* headerView = new QWidget;
    headerView->setFixedHeight(kContentBegin);
    auto* row = new QHBoxLayout(headerView);
    // The header's parts are centred a little above the middle of the space up to the content.
    row->setContentsMargins(0, 2 * theme::kCardHeaderCentre - kContentBegin, 0, 0);
    row->setSpacing(0);
    // Spaces are mirrored for languages that run from right to left; margins would not be.
    row->addSpacing(theme::kBadgeLeading);
    row->addWidget(makeBadge(header));
    row->addSpacing(theme::kBadgeToText);
    row->addLayout(makeTextColumn(QString::fromStdString(header.subtitle)), 1);
    row->addSpacing(theme::kTextToChevron);
    row->addWidget(chevron_);
    row->addSpacing(theme::kChevronTrailing);
    return headerView;
}

void AccordionCard::makeButtons(const QString& title) {
    titleButton_ = new BorderlessButton;
    titleButton_->setText(title);
    titleButton_->setFont(theme::font(theme::kSectionTitleSize, FontWeight::semibold));
    titleButton_->setContentTint(label(theme::kSectionTitleAlpha));
    titleButton_->setContentAlignment(Qt::AlignLeading);
    titleButton_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    registerButton(*titleButton_, title);

    chevron_ = new HoverFillButton;
    chevron_->setFixedSize(theme::kChevronSize, theme::kChevronSize);
    chevron_->setContentTint(label(theme::kChevronAlpha));
    registerButton(*chevron_, title);
    setChevronExpanded(false);
}

QLayout* AccordionCard::makeTextColumn(const QString& subtitle) {
    auto* subtitleLabel = new QLabel(subtitle);
    subtitleLabel->setFont(theme::font(theme::kSectionSubtitleSize));
    setInk(*subtitleLabel, label(theme::kSectionSubtitleAlpha));

    auto* column = new QVBoxLayout;
    column->setSpacing(1);
    column->addStretch();
    column->addWidget(titleButton_);
    column->addWidget(subtitleLabel);
    column->addStretch();
    return column;
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
    QPainter painter(this);
    paintBox(painter, rect(), theme::kCardBackground, theme::kCardBorder, theme::kCardBorderWidth,
             theme::kCardCornerRadius);
}

Accordion::Accordion(const Clock& clock, MainQueue& queue, std::function<void(bool animated)> fitWindow)
    : clock_(clock),
      queue_(queue),
      fitWindow_(std::move(fitWindow)) {}

Accordion::~Accordion() = default;

AccordionCard* Accordion::buildAccordionSection(const SectionHeader& header, QWidget* content) {
    auto* card = new AccordionCard(header, content);
    sections_[QString::fromStdString(header.title)] = {card,
                                                       std::make_unique<FrameAnimation>(clock_, queue_)};
    connect(card, &AccordionCard::toggleRequested, this, &Accordion::toggleAccordion);
    return card;
}

void Accordion::toggleAccordion(const QString& identifier) {
    if (const auto* found = card(identifier)) {
        setAccordion(identifier, found->isContentHidden(), true);
    }
}

void Accordion::setAccordion(const QString& name, bool expanded, bool animated) {
    const auto found = sections_.find(name);
    if (found == sections_.end()) {
        return;
    }
    AccordionCard& card = *found->second.card;
    FrameAnimation& fade = *found->second.fade;
    if (card.isContentHidden() != expanded) {
        return;
    }
    fade.stop();
    if (expanded) {
        card.setContentAlpha(0);
        card.setContentHidden(false);
    }
    card.setChevronExpanded(expanded);
    card.setCollapsedHeightActive(!expanded);
    card.layOut();
    if (!animated) {
        finish(card, expanded);
        return;
    }
    const double from = card.contentAlpha();
    const double to = expanded ? 1 : 0;
    fade.start(
        theme::kAccordionDuration, theme::kAccordionCurve,
        [&card, from, to](double done) { card.setContentAlpha(from + (to - from) * done); },
        [this, &card, expanded] { finish(card, expanded); });
    fitWindow_(true);
}

void Accordion::finish(AccordionCard& card, bool expanded) {
    card.setContentHidden(!expanded);
    card.setContentAlpha(expanded ? 1 : 0);
    card.layOut();
    fitWindow_(false);
}

AccordionCard* Accordion::card(const QString& name) const {
    const auto found = sections_.find(name);
    return found == sections_.end() ? nullptr : found->second.card;
}

} // namespace tovik
