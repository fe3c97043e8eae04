// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Permissions/PermissionsSection.h"

#include "Permissions/PermissionChecklist.h"
#include "UserInterface/Controls/Buttons.h"
#include "UserInterface/Controls/Fields.h"
#include "UserInterface/Controls/Painting.h"
#include "UserInterface/Controls/Theme.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPaintEvent>
#include <QPainter>
#include <QVBoxLayout>

#include <utility>

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

/// A line of text that ends in an ellipsis where the room does; the whole text is still its text and, then,
/// its tool tip.
class ElidedLabel : public QLabel {
public:
    [[nodiscard]] QSize minimumSizeHint() const override { return {0, QLabel::minimumSizeHint().height()}; }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setPen(palette().color(foregroundRole()));
        painter.drawText(rect(), static_cast<int>(Qt::AlignVCenter | Qt::AlignLeading),
                         fontMetrics().elidedText(text(), Qt::ElideRight, width()));
    }
    void resizeEvent(QResizeEvent* event) override {
        QLabel::resizeEvent(event);
        setToolTip(fontMetrics().horizontalAdvance(text()) > width() ? text() : QString());
    }
};

QColor color(const RgbColor& rgb) {
    return theme::rgb(rgb.red, rgb.green, rgb.blue);
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
                                {theme::kRowIconSize, theme::kRowIconSize}, theme::kAccent);
    icon->setAccessibleName(QString::fromStdString(title(permission)));

    actionButton_->setFont(theme::font(theme::kRowTextSize, FontWeight::semibold));
    actionButton_->setFixedSize(theme::kRowButtonWidth, theme::kRowButtonHeight);
    actionButton_->setHasGround(true);

    auto* row = makeTightLayout<QHBoxLayout>(this, 0);
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
    setInk(*titleLabel, theme::kRowTitle);
    detailLabel_->setText(QString::fromStdString(subtitle(permission_)));
    detailLabel_->setFont(theme::font(theme::kRowTextSize));
    setInk(*detailLabel_, theme::kRowDetail);

    auto* view = new QWidget;
    auto* column = makeTightLayout<QVBoxLayout>(view, 1);
    column->addStretch();
    column->addWidget(titleLabel);
    column->addWidget(detailLabel_);
    column->addStretch();
    return view;
}

QWidget* PermissionRowView::makeStatusGroup() {
    statusLabel_->setFont(theme::font(theme::kRowTextSize, FontWeight::medium));
    auto* view = new QWidget;
    auto* group = makeTightLayout<QHBoxLayout>(view, theme::kRowStatusSpacing);
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
        shown.buttonTint
            ? color(*shown.buttonTint)
            : theme::withAlpha(theme::labelColor(QGuiApplication::palette(), theme::kRowBackground),
                               theme::kRowDimmedActionAlpha));
    actionButton_->describe(QString::fromStdString(shown.buttonAccessibilityLabel),
                            QString::fromStdString(shown.buttonAccessibilityHelp));
}

void PermissionRowView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    paintBox(painter, rect(), theme::kRowBackground, theme::kRowBorder, theme::kRowBorderWidth,
             theme::kRowCornerRadius);
}

PermissionsSection::PermissionsSection(const PermissionChecklist& checklist,
                                       const std::function<void(int)>& actionClicked, QWidget* parent)
    : QWidget(parent),
      checklist_(checklist),
      hint_(new QLabel) {
    auto* stack = makeTightLayout<QVBoxLayout>(this, theme::kRowSpacing);
    int index = 0;
    for (const TovikVoicePermission permission : kAllPermissions) {
        auto* row = new PermissionRowView(permission);
        connect(&row->actionButton(), &QPushButton::clicked, this,
                [actionClicked, index] { actionClicked(index); });
        stack->addWidget(row);
        rows_[permission] = row;
        ++index;
    }

    hint_->setObjectName(QStringLiteral("permissionsHintLabel"));
    hint_->setFont(theme::font(theme::kHintTextSize));
    hint_->setWordWrap(true);
    hint_->setMaximumHeight(theme::kHintMaxLines * hint_->fontMetrics().lineSpacing());
    const QColor label = theme::labelColor(QGuiApplication::palette(), theme::kCardBackground);
    setInk(*hint_, theme::withAlpha(label, theme::kHintTextAlpha));
    stack->addWidget(hint_);
    refresh();
}

void PermissionsSection::refresh() {
    for (const auto& [permission, row] : rows_) {
        row->update(checklist_.permissionState(permission));
    }
    hint_->setText(QString::fromStdString(checklist_.hintText()));
}

} // namespace tovik
