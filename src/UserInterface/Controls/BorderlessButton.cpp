// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/BorderlessButton.h"

#include "UserInterface/Controls/SymbolImage.h"
#include "UserInterface/Controls/Theme.h"

#include <QAccessible>
#include <QFontMetricsF>
#include <QPainter>
#include <QStyle>

#include <algorithm>
#include <cmath>

namespace tovik {

namespace {

constexpr double kSymbolToText = 4;
constexpr double kFocusRingRadius = 5;

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
        paintFocusRing(painter);
    }
}

void BorderlessButton::paintGround(QPainter& /*painter*/) {}

double BorderlessButton::contentOpacity() const {
    return isEnabled() ? 1 : 0.4;
}

void BorderlessButton::paintFocusRing(QPainter& painter) {
    constexpr double inset = theme::kFocusRingWidth / 2;
    painter.setPen(QPen(theme::color(theme::kAccent), theme::kFocusRingWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), kFocusRingRadius,
                            kFocusRingRadius);
}

void BorderlessButton::enterEvent(QEnterEvent* event) {
    QPushButton::enterEvent(event);
    update();
}

void BorderlessButton::leaveEvent(QEvent* event) {
    QPushButton::leaveEvent(event);
    update();
}

} // namespace tovik
