// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Permissions/TovikVoicePermission.h"

#include <QWidget>

#include <functional>
#include <map>

class QLabel;

namespace tovik {

class PermissionChecklist;
class PermissionRowView;

/// The rows of all permissions and the line beneath them.
class PermissionsSection : public QWidget {
    Q_OBJECT

public:
    /// actionClicked gets the index of the row whose button was pressed. The checklist outlives the section.
    PermissionsSection(const PermissionChecklist& checklist, std::function<void(int)> actionClicked,
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
