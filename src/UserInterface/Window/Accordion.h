// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "UserInterface/Controls/FrameAnimation.h"
#include "UserInterface/Window/MainWindowSections.h"

#include <QObject>
#include <QString>

#include <functional>
#include <map>
#include <memory>

class QWidget;

namespace tovik {

class AccordionCard;

/// The cards of the main window by their titles, and what opens and closes them. Main thread.
class Accordion : public QObject {
    Q_OBJECT

public:
    /// fitWindow is told whenever the cards together have got another height, and whether to take its time.
    Accordion(const Clock& clock, MainQueue& queue, std::function<void(bool animated)> fitWindow);
    ~Accordion() override;

    /// A collapsed card, which its future parent owns, and which must live as long as this.
    AccordionCard* buildAccordionSection(const SectionHeader& header, QWidget* content);

    /// An unknown name is ignored.
    void toggleAccordion(const QString& identifier);
    void setAccordion(const QString& name, bool expanded, bool animated);

    /// Null for an unknown name.
    [[nodiscard]] AccordionCard* card(const QString& name) const;

private:
    struct Section {
        AccordionCard* card = nullptr;
        std::unique_ptr<FrameAnimation> fade;
    };

    void finish(AccordionCard& card, bool expanded);

    const Clock& clock_;
    MainQueue& queue_;
    std::function<void(bool)> fitWindow_;
    std::map<QString, Section> sections_;
};

} // namespace tovik
