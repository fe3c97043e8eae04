// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Subscription.h"
#include "Platform/UserInterface.h"

#include <map>
#include <memory>

class QAction;
class QMenu;

namespace tovik {

/// Shows a Menu, with its submenus, as a QMenu and follows its changes, also while it is open. Main thread,
/// within the life of the QApplication.
class QtMenu {
public:
    /// Who shows the titles in the end: Qt itself, or a panel that Qt hands them on to as a status notifier
    /// item. Each takes another character for the mark of a shortcut letter.
    enum class ShownBy { qt, notifierPanel };

    explicit QtMenu(std::shared_ptr<Menu> menu, ShownBy shownBy = ShownBy::qt);
    QtMenu(const QtMenu&) = delete;
    QtMenu& operator=(const QtMenu&) = delete;
    /// Harmless while an item of the menu is just being chosen.
    ~QtMenu();

    [[nodiscard]] QMenu& widget() const;

private:
    class Widget;

    void rebuild();
    QAction* addItem(const MenuItem& item, std::map<Menu*, std::unique_ptr<QtMenu>>& oldSubmenus);

    const std::shared_ptr<Menu> menu_;
    const ShownBy shownBy_;
    Widget* widget_;
    std::map<Menu*, std::unique_ptr<QtMenu>> submenus_;
    Lifetime lifetime_;
    Subscription changes_;
};

} // namespace tovik
