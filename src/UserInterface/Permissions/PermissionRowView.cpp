// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Permissions/PermissionRowView.h"

#include "Permissions/PermissionChecklist.h"
#include "UserInterface/Controls/ElidedLabel.h"
#include "UserInterface/Controls/HoverLinkButton.h"
#include "UserInterface/Controls/SymbolView.h"
#include "UserInterface/Controls/Theme.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPaintEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace tovik {

namespace {

/// A small round light.
class StatusDot : public QWidget {
public:
    StatusDot() { setFixedSize(theme::kRowDotSize, theme::kRowDotSize); }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(palette().color(QPalette::WindowText));
        painter.drawEllipse(rect());
    }
};

void setInk(QWidget& view, const QColor& color) {
    QPalette palette = view.palette();
    palette.setColor(QPalette::WindowText, color);
    view.setPalette(palette);
}

QColor color(const RgbColor& rgb) {
    return theme::color({rgb.red, rgb.green, rgb.blue});
}

} // namespace

PermissionRowView::PermissionRowView(TovikVoicePermission permission, QWidget* parent)
    : QWidget(parent),
      permission_(permission),
      statusLabel_(new QLabel),
      actionButton_(new HoverLinkButton),
      statusDot_(new StatusDot),
      detailLabel_(new ElidedLabel) {
    setFixedHeight(theme::kRowHeight);
    setObjectName(QString::fromStdString(rawValue(permission)));

    auto* icon = new SymbolView(QString::fromStdString(symbolName(permission)),
                                {theme::kRowIconSize, theme::kRowIconSize}, theme::color(theme::kAccent));
    icon->setAccessibleName(QString::fromStdString(title(permission)));

    actionButton_->setFont(theme::font(theme::kRowTextSize, FontWeight::semibold));
    actionButton_->setFixedSize(theme::kRowButtonWidth, theme::kRowButtonHeight);
    actionButton_->setHasGround(true);

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    // Spaces are mirrored for languages that run from right to left; margins would not be.
    row->addSpacing(theme::kRowSide);
    row->addWidget(icon);
    row->addSpacing(theme::kRowGap);
    row->addWidget(makeTextColumn(), 1);
    row->addSpacing(theme::kRowGap);
    row->addWidget(makeStatusGroup());
    row->addSpacing(theme::kRowGap);
    row->addWidget(actionButton_);
    row->addSpacing(theme::kRowGap);
}

QWidget* PermissionRowView::makeTextColumn() {
    auto* titleLabel = new QLabel(QString::fromStdString(title(permission_)));
    titleLabel->setFont(theme::font(theme::kRowTitleSize, FontWeight::semibold));
    setInk(*titleLabel, theme::color(theme::kRowTitle));
    detailLabel_->setText(QString::fromStdString(subtitle(permission_)));
    detailLabel_->setFont(theme::font(theme::kRowTextSize));
    setInk(*detailLabel_, theme::color(theme::kRowDetail));

    auto* view = new QWidget;
    auto* column = new QVBoxLayout(view);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(1);
    column->addStretch();
    column->addWidget(titleLabel);
    column->addWidget(detailLabel_);
    column->addStretch();
    return view;
}

QWidget* PermissionRowView::makeStatusGroup() {
    statusLabel_->setFont(theme::font(theme::kRowTextSize, FontWeight::medium));
    auto* view = new QWidget;
    auto* group = new QHBoxLayout(view);
    group->setContentsMargins(0, 0, 0, 0);
    group->setSpacing(theme::kRowStatusSpacing);
    group->addWidget(statusDot_);
    group->addWidget(statusLabel_);
    return view;
}

void PermissionRowView::update(TovikVoicePermissionState state) {
    const PermissionRowContents shown = rowContents(permission_, state);
    const QColor tint = color(shown.tint);
    statusLabel_->setText(QString::fromStdString(shown.statusText));
    setInk(*statusLabel_, tint);
    detailLabel_->setText(QString::fromStdString(shown.detailText));
    setInk(*statusDot_, tint);
    actionButton_->setText(QString::fromStdString(shown.buttonTitle));
    actionButton_->setContentTint(
        shown.buttonTint ? color(*shown.buttonTint)
                         : theme::color(theme::labelColor(QGuiApplication::palette(), theme::kRowBackground)
                                            .withAlpha(theme::kRowDimmedActionAlpha)));
    actionButton_->describe(QString::fromStdString(shown.buttonAccessibilityLabel),
                            QString::fromStdString(shown.buttonAccessibilityHelp));
}

void PermissionRowView::paintEvent(QPaintEvent* /*event*/) {
    constexpr double inset = theme::kRowBorderWidth / 2;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme::color(theme::kRowBorder), theme::kRowBorderWidth));
    painter.setBrush(theme::color(theme::kRowBackground));
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset),
                            theme::kRowCornerRadius - inset, theme::kRowCornerRadius - inset);
}

} // namespace tovik
