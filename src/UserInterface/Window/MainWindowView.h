// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"

#include <QWidget>

class QScrollArea;

namespace tovik {

class FlippedDocumentView;
class FooterView;
class HeaderView;
class OverlayScrollBar;
class StickyHeaderFadeView;
class ToastView;

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
