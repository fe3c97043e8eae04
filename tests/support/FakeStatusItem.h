// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/StatusItem.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tovik::test {

/// A tray that the test looks at and clicks in.
class FakeStatusItem : public StatusItem {
public:
    explicit FakeStatusItem(bool hasButton = true) : hasButton_(hasButton) {}

    [[nodiscard]] bool hasButton() const override { return hasButton_; }
    void setImage(const StatusImage& image) override { images_.push_back(image); }
    void setToolTip(const std::string& text) override { toolTips_.push_back(text); }
    void setMenu(std::shared_ptr<Menu> menu) override { menu_ = std::move(menu); }

    void setHasButton(bool hasButton) { hasButton_ = hasButton; }

    /// All images so far, the one that shows now last.
    [[nodiscard]] const std::vector<StatusImage>& images() const { return images_; }
    [[nodiscard]] std::optional<StatusImage> image() const {
        return images_.empty() ? std::nullopt : std::optional(images_.back());
    }
    [[nodiscard]] const std::vector<std::string>& toolTips() const { return toolTips_; }
    [[nodiscard]] const std::shared_ptr<Menu>& menu() const { return menu_; }

    /// As if the user opened the menu, or the submenu of this title in it.
    void openMenu(std::string_view submenuTitle = {}) {
        auto menu = menu_;
        if (menu && menu->onWillOpen) {
            menu->onWillOpen();
        }
        if (submenuTitle.empty() || !menu) {
            return;
        }
        for (const auto& item : menu->items()) {
            if (item.title == submenuTitle && item.submenu) {
                if (const auto submenu = item.submenu; submenu->onWillOpen) {
                    submenu->onWillOpen();
                }
                return;
            }
        }
    }

    /// As if the user chose the item at the end of this path of titles. False when there is no such item or
    /// it cannot be chosen.
    bool choose(const std::vector<std::string>& path) {
        auto menu = menu_;
        for (std::size_t depth = 0; menu && depth < path.size(); ++depth) {
            const auto* item = find(*menu, path[depth]);
            if (!item || !item->isEnabled) {
                return false;
            }
            if (depth + 1 == path.size()) {
                // The action may rebuild the menu that holds it.
                const auto action = item->action;
                if (action) {
                    action();
                }
                return static_cast<bool>(action);
            }
            menu = item->submenu;
        }
        return false;
    }

private:
    static const MenuItem* find(const Menu& menu, const std::string& title) {
        for (const auto& item : menu.items()) {
            if (!item.isSeparator && item.title == title) {
                return &item;
            }
        }
        return nullptr;
    }

    bool hasButton_;
    std::vector<StatusImage> images_;
    std::vector<std::string> toolTips_;
    std::shared_ptr<Menu> menu_;
};

} // namespace tovik::test
