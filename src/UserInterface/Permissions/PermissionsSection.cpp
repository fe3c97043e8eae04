// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Permissions/PermissionsSection.h"

#include "Permissions/PermissionChecklist.h"
#include "UserInterface/Controls/HoverLinkButton.h"
#include "UserInterface/Permissions/PermissionRowView.h"
#include "UserInterface/Controls/Theme.h"

#include <QGuiApplication>
#include <QLabel>
#include <QVBoxLayout>

#include <utility>

namespace tovik {

PermissionsSection::PermissionsSection(const PermissionChecklist& checklist,
                                       std::function<void(int)> actionClicked, QWidget* parent)
    : QWidget(parent),
      checklist_(checklist),
      hint_(new QLabel) {
    auto* stack = new QVBoxLayout(this);
    stack->setContentsMargins(0, 0, 0, 0);
    stack->setSpacing(theme::kRowSpacing);
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
    QPalette palette = hint_->palette();
    const Rgba label = theme::labelColor(QGuiApplication::palette(), theme::kCardBackground);
    palette.setColor(QPalette::WindowText, theme::color(label.withAlpha(theme::kHintTextAlpha)));
    hint_->setPalette(palette);
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
