// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "UserInterface/Controls/FrameAnimation.h"
#include "UserInterface/Window/MainWindowLayout.h"

#include <QGraphicsEffect>
#include <QObject>
#include <QString>
#include <QWidget>

#include <functional>
#include <map>
#include <memory>

class QLayout;

namespace tovik {

class BorderlessButton;

/// Shows a view and all in it as one sheet of this opacity. Costs what can be seen of the view, however large
/// that is: Qt's own effect makes a picture of the whole.
class FadeEffect : public QGraphicsEffect {
    Q_OBJECT

public:
    /// For this view, which owns it.
    explicit FadeEffect(QWidget& view);

    void setOpacity(double opacity);

protected:
    void draw(QPainter* painter) override;

private:
    QWidget& view_;
    double opacity_ = 1;
};

/// A card with a header and, when expanded, content beneath it. Collapsed at first. It only shows the state
/// that it is given; its shadow is painted by what it lies on.
class AccordionCard : public QWidget {
    Q_OBJECT

public:
    /// The card takes over the content.
    AccordionCard(const SectionHeader& header, QWidget* content, QWidget* parent = nullptr);

    [[nodiscard]] QWidget& content() { return *content_; }
    [[nodiscard]] BorderlessButton& titleButton() { return *titleButton_; }
    [[nodiscard]] BorderlessButton& chevron() { return *chevron_; }

    [[nodiscard]] bool isContentHidden() const;
    void setContentHidden(bool hidden);

    [[nodiscard]] double contentAlpha() const { return contentAlpha_; }
    void setContentAlpha(double alpha);

    /// Holds the card at the height of its header.
    void setCollapsedHeightActive(bool active);
    [[nodiscard]] bool isCollapsedHeightActive() const;

    void setChevronExpanded(bool expanded);

    /// Brings sizes up to date at once.
    void layOut();

signals:
    /// The title or the chevron was pressed.
    void toggleRequested(const QString& identifier);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QWidget* makeHeader(const SectionHeader& header);
    void makeButtons(const QString& title);
    QLayout* makeTextColumn(const QString& subtitle);
    void registerButton(BorderlessButton& button, const QString& title);

    QWidget* content_;
    QWidget* contentPlace_ = nullptr;
    FadeEffect* contentEffect_ = nullptr;
    BorderlessButton* titleButton_ = nullptr;
    BorderlessButton* chevron_ = nullptr;
    double contentAlpha_ = 1;
};

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
