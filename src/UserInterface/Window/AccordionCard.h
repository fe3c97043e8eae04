// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UserInterface/Window/MainWindowSections.h"

#include <QWidget>

namespace tovik {

class BorderlessButton;
class FadeEffect;

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
    void registerButton(BorderlessButton& button, const QString& title);

    QWidget* content_;
    QWidget* contentPlace_ = nullptr;
    FadeEffect* contentEffect_ = nullptr;
    BorderlessButton* titleButton_ = nullptr;
    BorderlessButton* chevron_ = nullptr;
    double contentAlpha_ = 1;
};

} // namespace tovik
