// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"

#include <QColor>
#include <QWidget>

class QLabel;
class QScrollArea;
class QVBoxLayout;

namespace tovik {

class HeaderView;
class HoverLinkButton;
class OverlayScrollBar;
class ToastView;

/// The band beneath the header into which the cards seem to dip. Takes no clicks.
class StickyHeaderFadeView : public QWidget {
    Q_OBJECT

public:
    explicit StickyHeaderFadeView(QWidget* parent = nullptr);

    /// The colour at the upper edge, from which the band fades to nothing.
    void setColor(const QColor& color);

    void setAlpha(double alpha);
    [[nodiscard]] double alpha() const { return alpha_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor color_ = Qt::white;
    double alpha_ = 1;
};

/// The column of cards that scrolls under the header, growing downwards, with the shadows that the cards
/// throw on it.
class FlippedDocumentView : public QWidget {
    Q_OBJECT

public:
    explicit FlippedDocumentView(QWidget* parent = nullptr);

    void addCard(QWidget* card);
    /// Below the last card.
    void addFooter(QWidget* footer);

    /// The height that everything in it needs.
    [[nodiscard]] int fittingHeight() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void centreColumn(int width);

    QVBoxLayout* stack_;
    QList<QWidget*> cards_;
};

/// What stands below the last card: the version and two links.
class FooterView : public QWidget {
    Q_OBJECT

public:
    explicit FooterView(const QString& version, QWidget* parent = nullptr);

    [[nodiscard]] HoverLinkButton& updatesButton() { return *updates_; }
    [[nodiscard]] HoverLinkButton& websiteButton() { return *website_; }

protected:
    void changeEvent(QEvent* event) override;

private:
    void applyColors();

    QLabel* version_;
    HoverLinkButton* updates_;
    HoverLinkButton* website_;
};

/// Everything inside the main window, in its place: header, scrolling cards, fade band and toast. As wide as
/// its content wants, in the middle of whatever width a window manager insists on.
class MainWindowView : public QWidget {
    Q_OBJECT

public:
    MainWindowView(const Clock& clock, MainQueue& queue, QWidget* parent);

    [[nodiscard]] HeaderView& header() { return *header_; }
    [[nodiscard]] FlippedDocumentView& document() { return *document_; }
    [[nodiscard]] StickyHeaderFadeView& headerFadeView() { return *fade_; }
    [[nodiscard]] ToastView& toast() { return *toast_; }

    /// The height of the cards with what lies above them and is not part of the space that every window has
    /// above its cards.
    [[nodiscard]] int stackFittingHeight() const;

    void scrollToTop();
    /// Down from the top.
    [[nodiscard]] int scrollOffset() const;
    void setScrollOffset(int offset);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void handleMainScroll();
    void applyColors();

    HeaderView* header_;
    FlippedDocumentView* document_;
    QScrollArea* scroll_ = nullptr;
    StickyHeaderFadeView* fade_ = nullptr;
    OverlayScrollBar* scrollBar_ = nullptr;
    ToastView* toast_ = nullptr;
};

} // namespace tovik
