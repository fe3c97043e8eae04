// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/Accordion.h"

#include "UserInterface/Window/AccordionCard.h"
#include "UserInterface/Controls/Theme.h"

#include <utility>

namespace tovik {

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
