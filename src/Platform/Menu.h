// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Subscription.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tovik {

class Menu;

/// One row of a menu.
struct MenuItem {
    std::string title;
    /// Runs when the user chooses the item. An item with neither action nor submenu cannot be chosen.
    std::function<void()> action;
    /// Text that the item stands for: a locale, a device, a transcript. Often empty.
    std::string representedText;
    /// A letter; with the platform's menu modifier it chooses the item.
    std::string keyEquivalent;
    std::shared_ptr<Menu> submenu;
    bool isChecked = false;
    bool isEnabled = true;
    bool isSeparator = false;

    [[nodiscard]] static MenuItem separator() {
        MenuItem item;
        item.isSeparator = true;
        return item;
    }
};

/// A menu as the program describes it; all that show it follow its changes. Main thread.
class Menu {
public:
    Menu() = default;
    Menu(const Menu&) = delete;
    Menu& operator=(const Menu&) = delete;

    [[nodiscard]] const std::vector<MenuItem>& items() const { return items_; }

    void setItems(std::vector<MenuItem> items) {
        items_ = std::move(items);
        changed_.tell();
    }

    /// For whoever shows the menu: told of each change until the token is dropped.
    [[nodiscard]] Subscription observe(std::function<void()> changed) {
        return changed_.add(std::move(changed));
    }

    /// Set by whoever fills the menu; called each time before it opens.
    std::function<void()> onWillOpen;

private:
    std::vector<MenuItem> items_;
    Observers<> changed_;
};

} // namespace tovik
