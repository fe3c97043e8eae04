// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Permissions/TovikVoicePermission.h"
#include "Permissions/TovikVoicePermissionState.h"

#include <QColor>
#include <QWidget>

class QLabel;

namespace tovik {

class HoverLinkButton;

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

} // namespace tovik
