// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Settings/SettingCheckBox.h"

#include "UserInterface/Controls/Theme.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QStyle>

#include <algorithm>

namespace tovik {

namespace {

/// Space for the ring around the box.
constexpr int kRingRoom = 2;
constexpr int kTextBegin = kRingRoom + theme::kCheckBoxSize + theme::kCheckBoxToText;
constexpr int kHeight = 20;

} // namespace

SettingCheckBox::SettingCheckBox(QWidget* parent) : QCheckBox(parent) {
    setFont(theme::font(theme::kSettingTextSize));
    setCursor(Qt::PointingHandCursor);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize SettingCheckBox::sizeHint() const {
    return {kTextBegin + fontMetrics().horizontalAdvance(text()) + kRingRoom,
            std::max(kHeight, fontMetrics().height())};
}

bool SettingCheckBox::hitButton(const QPoint& position) const {
    return rect().contains(position);
}

void SettingCheckBox::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRect boxPlace(kRingRoom, (height() - theme::kCheckBoxSize) / 2, theme::kCheckBoxSize,
                         theme::kCheckBoxSize);
    painter.setOpacity(isEnabled() ? 1 : theme::kSettingDisabledAlpha);
    paintBox(painter, QStyle::visualRect(layoutDirection(), rect(), boxPlace));

    painter.setOpacity(1);
    const Rgba ink = theme::labelColor(QGuiApplication::palette(), theme::kCardBackground);
    painter.setPen(
        theme::color(ink.withAlpha(isEnabled() ? theme::kSettingTextAlpha : theme::kSettingNoteAlpha)));
    painter.setFont(font());
    const QRect textPlace(kTextBegin, 0, width() - kTextBegin, height());
    painter.drawText(QStyle::visualRect(layoutDirection(), rect(), textPlace),
                     static_cast<int>(Qt::AlignVCenter | Qt::AlignLeading), text());
}

void SettingCheckBox::paintBox(QPainter& painter, const QRectF& box) const {
    const QColor accent = theme::color(theme::kAccent);
    if (hasFocus()) {
        constexpr double kOut = theme::kFocusRingWidth / 2;
        painter.setPen(QPen(accent, theme::kFocusRingWidth));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(box.adjusted(-kOut, -kOut, kOut, kOut), theme::kCheckBoxRadius + kOut,
                                theme::kCheckBoxRadius + kOut);
    }
    painter.setPen(isChecked() ? QPen(Qt::NoPen) : QPen(theme::color(theme::kSeparator), 1));
    painter.setBrush(isChecked() ? accent : theme::color(theme::kShellBackground));
    const double inset = isChecked() ? 0 : 0.5;
    painter.drawRoundedRect(box.adjusted(inset, inset, -inset, -inset), theme::kCheckBoxRadius,
                            theme::kCheckBoxRadius);
    if (isChecked()) {
        QPainterPath mark(QPointF(box.left() + 3.4, box.center().y() + 0.3));
        mark.lineTo(box.left() + 5.9, box.bottom() - 3.9);
        mark.lineTo(box.right() - 3.3, box.top() + 4.1);
        painter.setPen(QPen(Qt::white, 1.7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(mark);
    }
}

} // namespace tovik
