// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Permissions/PermissionChecklist.h"

#include <QColor>
#include <QWidget>

#include <functional>
#include <map>

class QLabel;

namespace tovik {

class HoverLinkButton;
class PermissionChecklist;

/// One permission: what it is for, how it stands, and a button that does what helps.
class PermissionRowView : public QWidget {
    Q_OBJECT

public:
    explicit PermissionRowView(TovikVoicePermission permission, QWidget* parent = nullptr);

    [[nodiscard]] TovikVoicePermission permission() const { return permission_; }
    [[nodiscard]] QLabel& statusLabel() { return *statusLabel_; }
    [[nodiscard]] HoverLinkButton& actionButton() { return *actionButton_; }
    [[nodiscard]] QWidget& statusDot() { return *statusDot_; }
    [[nodiscard]] QLabel& detailLabel() { return *detailLabel_; }

    void update(TovikVoicePermissionState state);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QWidget* makeTextColumn();
    QWidget* makeStatusGroup();

    const TovikVoicePermission permission_;
    QLabel* statusLabel_;
    HoverLinkButton* actionButton_;
    QWidget* statusDot_;
    QLabel* detailLabel_;
};

/// The rows of all permissions and the line beneath them.
class PermissionsSection : public QWidget {
    Q_OBJECT

public:
    /// actionClicked gets the index of the row whose button was pressed. The checklist outlives the section.
    PermissionsSection(const PermissionChecklist& checklist, const std::function<void(int)>& actionClicked,
                       QWidget* parent = nullptr);

    /// Asks again how everything stands, and shows it.
    void refresh();

    [[nodiscard]] PermissionRowView& row(TovikVoicePermission permission) { return *rows_.at(permission); }
    [[nodiscard]] QLabel& hintLabel() { return *hint_; }

private:
    const PermissionChecklist& checklist_;
    std::map<TovikVoicePermission, PermissionRowView*> rows_;
    QLabel* hint_;
};

} // namespace tovik
