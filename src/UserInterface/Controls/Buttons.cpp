// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/Buttons.h"

#include "UserInterface/Controls/Painting.h"
#include "UserInterface/Controls/Theme.h"

#include <QAccessible>
#include <QFontMetricsF>
#include <QPaintEvent>
#include <QPainter>
#include <QStyle>

#include <algorithm>
#include <cmath>

namespace tovik {

namespace {

constexpr double kSymbolToText = 4;
constexpr double kFocusRingRadius = 5;

constexpr double kHoverAlpha = 0.08;
constexpr double kPressedAlpha = 0.16;
constexpr double kLargestRadius = 7;

constexpr double kGroundAlpha = 0.08;
constexpr double kHoverGroundAlpha = 0.15;
constexpr double kPressedGroundAlpha = 0.22;
constexpr double kGroundRadius = 6;

} // namespace

BorderlessButton::BorderlessButton(QWidget* parent) : QPushButton(parent) {
    setFlat(true);
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::PointingHandCursor);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void BorderlessButton::setSymbol(const QString& symbolName, double edge) {
    symbolName_ = symbolName;
    symbolEdge_ = edge;
    updateGeometry();
    update();
}

void BorderlessButton::setContentTint(const QColor& tint) {
    contentTint_ = tint;
    update();
}

void BorderlessButton::setContentAlignment(Qt::Alignment alignment) {
    alignment_ = alignment;
    update();
}

void BorderlessButton::setContentPadding(int horizontal, int vertical) {
    horizontalPadding_ = horizontal;
    verticalPadding_ = vertical;
    updateGeometry();
}

void BorderlessButton::describe(const QString& name, const QString& help) {
    setAccessibleName(name);
    setAccessibleDescription(help);
    setToolTip(help);
}

void BorderlessButton::setExpanded(bool expanded) {
    if (expanded_ == expanded) {
        return;
    }
    expanded_ = expanded;
    QAccessible::State changed;
    changed.expanded = true;
    QAccessibleStateChangeEvent event(this, changed);
    QAccessible::updateAccessibility(&event);
}

QSize BorderlessButton::sizeHint() const {
    const QSizeF content = contentSize();
    return {static_cast<int>(std::ceil(content.width())) + 2 * horizontalPadding_,
            static_cast<int>(std::ceil(content.height())) + 2 * verticalPadding_};
}

QSizeF BorderlessButton::contentSize() const {
    const QFontMetricsF metrics(font());
    const double textWidth = text().isEmpty() ? 0 : metrics.horizontalAdvance(text());
    const double textHeight = text().isEmpty() ? 0 : metrics.height();
    const double gap = textWidth > 0 && symbolEdge_ > 0 ? kSymbolToText : 0;
    return {symbolEdge_ + gap + textWidth, std::max(symbolEdge_, textHeight)};
}

void BorderlessButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintGround(painter);

    const QRect inner =
        rect().adjusted(horizontalPadding_, verticalPadding_, -horizontalPadding_, -verticalPadding_);
    const QSizeF content = contentSize();
    const QRect place = QStyle::alignedRect(layoutDirection(), alignment_ | Qt::AlignVCenter,
                                            content.toSize().boundedTo(inner.size()), inner);
    QColor tint = contentTint_;
    tint.setAlphaF(static_cast<float>(contentTint_.alphaF() * contentOpacity()));
    QRectF textPlace(place);
    if (symbolEdge_ > 0) {
        const bool fromRight = isRightToLeft();
        const double x = fromRight ? place.right() + 1 - symbolEdge_ : place.left();
        symbols::paint(painter, symbolName_,
                       QRectF(x, QRectF(place).center().y() - symbolEdge_ / 2, symbolEdge_, symbolEdge_),
                       tint);
        const double taken = symbolEdge_ + kSymbolToText;
        textPlace.adjust(fromRight ? 0 : taken, 0, fromRight ? -taken : 0, 0);
    }
    if (!text().isEmpty()) {
        painter.setFont(font());
        painter.setPen(tint);
        const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, inner.width());
        painter.drawText(textPlace.adjusted(-1, 0, 1, 0), static_cast<int>(Qt::AlignCenter), shown);
    }
    if (hasFocus()) {
        paintFocusRing(painter, rect(), kFocusRingRadius);
    }
}

void BorderlessButton::paintGround(QPainter& /*painter*/) {}

double BorderlessButton::contentOpacity() const {
    return isEnabled() ? 1 : 0.4;
}

void BorderlessButton::enterEvent(QEnterEvent* event) {
    QPushButton::enterEvent(event);
    update();
}

void BorderlessButton::leaveEvent(QEvent* event) {
    QPushButton::leaveEvent(event);
    update();
}

double HoverFillButton::fillAlpha() const {
    if (isDown()) {
        return kPressedAlpha;
    }
    return isHovered() ? kHoverAlpha : 0;
}

void HoverFillButton::paintGround(QPainter& painter) {
    const double alpha = fillAlpha();
    if (alpha <= 0) {
        return;
    }
    fillRounded(painter, rect(), theme::withAlpha(contentTint(), alpha),
                std::min<double>(kLargestRadius, std::min(width(), height()) / 2.0));
}

void HoverLinkButton::setHasGround(bool hasGround) {
    hasGround_ = hasGround;
    update();
}

void HoverLinkButton::setUnderlined(bool underlined) {
    QFont wanted = font();
    wanted.setUnderline(underlined);
    setFont(wanted);
}

void HoverLinkButton::enterEvent(QEnterEvent* event) {
    BorderlessButton::enterEvent(event);
    setUnderlined(!hasGround_);
}

void HoverLinkButton::leaveEvent(QEvent* event) {
    BorderlessButton::leaveEvent(event);
    setUnderlined(false);
}

void HoverLinkButton::paintGround(QPainter& painter) {
    if (!hasGround_) {
        return;
    }
    const double alpha = isDown() ? kPressedGroundAlpha : isHovered() ? kHoverGroundAlpha : kGroundAlpha;
    fillRounded(painter, rect(), theme::withAlpha(contentTint(), alpha), kGroundRadius);
}

namespace {

constexpr int kWidth = 10;
constexpr int kHandleInset = 2;
constexpr int kShortestHandle = 28;
constexpr double kHandleAlpha = 0.35;
constexpr double kHandleHoverAlpha = 0.55;

} // namespace

OverlayScrollBar::OverlayScrollBar(QScrollBar& mirrored, QWidget* parent)
    : QScrollBar(Qt::Vertical, parent),
      mirrored_(mirrored) {
    setAttribute(Qt::WA_Hover);
    connect(&mirrored, &QScrollBar::rangeChanged, this, &OverlayScrollBar::adoptRange);
    // Scroll areas set the size of a page after the range, and nothing tells of that.
    connect(&mirrored, &QScrollBar::rangeChanged, this, &OverlayScrollBar::adoptRange, Qt::QueuedConnection);
    connect(&mirrored, &QScrollBar::valueChanged, this, &QScrollBar::setValue);
    connect(this, &QScrollBar::valueChanged, &mirrored, &QScrollBar::setValue);
    adoptRange();
}

QSize OverlayScrollBar::sizeHint() const {
    return {kWidth, QScrollBar::sizeHint().height()};
}

void OverlayScrollBar::adoptRange() {
    setRange(mirrored_.minimum(), mirrored_.maximum());
    setPageStep(mirrored_.pageStep());
    setSingleStep(mirrored_.singleStep());
    setValue(mirrored_.value());
    setVisible(maximum() > minimum());
}

void OverlayScrollBar::paintEvent(QPaintEvent* /*event*/) {
    const double whole = maximum() - minimum() + pageStep();
    const double length = std::max<double>(kShortestHandle, height() * pageStep() / whole);
    const double travel = height() - length;
    const double begin = maximum() > minimum() ? travel * (value() - minimum()) / (maximum() - minimum()) : 0;
    const double alpha = underMouse() || isSliderDown() ? kHandleHoverAlpha : kHandleAlpha;
    const QRectF handle(kHandleInset, begin + kHandleInset, width() - 2 * kHandleInset,
                        length - 2 * kHandleInset);
    QPainter painter(this);
    fillRounded(painter, handle, theme::withAlpha(palette().color(QPalette::WindowText), alpha),
                handle.width() / 2);
}

} // namespace tovik
