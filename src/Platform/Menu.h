// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

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

/// A menu as the program describes it; whoever shows it follows its changes. Main thread.
class Menu {
public:
    [[nodiscard]] const std::vector<MenuItem>& items() const { return items_; }

    void setItems(std::vector<MenuItem> items) {
        items_ = std::move(items);
        if (onChanged) {
            onChanged();
        }
    }

    /// Set by whoever shows the menu.
    std::function<void()> onChanged;
    /// Set by whoever fills the menu; called each time before it opens.
    std::function<void()> onWillOpen;

private:
    std::vector<MenuItem> items_;
};

} // namespace tovik
