// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/StatusItem/QtMenu.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QKeySequence>
#include <QMenu>
#include <QPointer>

#include <utility>

namespace tovik {

namespace {

/// As it stands: nothing in it marks a shortcut letter or starts another column or line.
QString plainTitle(const std::string& title, QtMenu::ShownBy shownBy) {
    auto text = QString::fromStdString(title);
    for (const char separator : {'\t', '\n', '\r'}) {
        text.replace(separator, ' ');
    }
    if (shownBy == QtMenu::ShownBy::qt) {
        return text.replace('&', "&&");
    }
    // Panels take an underscore for the mark. Qt gives them one for the first ampersand and leaves the others
    // alone: so the first is one of ours, before a letter that may well be marked.
    text.replace('_', "__");
    return text.contains('&') ? '&' + text : text;
}

/// Closes every menu that is open.
void closeMenus() {
    while (auto* const popup = QApplication::activePopupWidget()) {
        popup->close();
    }
}

} // namespace

/// While it or one of its submenus is open, the keys that stand beside its items choose them. Qt leaves that
/// to windows, which this menu may have none of.
class QtMenu::Widget : public QMenu {
public:
    /// The menu that this one is a submenu of.
    void setAbove(Widget* above) { above_ = above; }

protected:
    void keyPressEvent(QKeyEvent* event) override {
        const QKeySequence pressed(event->keyCombination());
        for (const Widget* menu = this; menu; menu = menu->above_) {
            for (const QPointer<QAction> action : menu->actions()) {
                if (action->isEnabled() && !action->shortcut().isEmpty() && action->shortcut() == pressed) {
                    closeMenus();
                    if (action) {
                        action->trigger();
                    }
                    return;
                }
            }
        }
        QMenu::keyPressEvent(event);
    }

private:
    QPointer<Widget> above_;
};

QMenu& QtMenu::widget() const {
    return *widget_;
}

QtMenu::QtMenu(std::shared_ptr<Menu> menu, ShownBy shownBy)
    : menu_(std::move(menu)),
      shownBy_(shownBy),
      widget_(new Widget) {
    QObject::connect(widget_, &QMenu::aboutToShow, widget_, lifetime_.guard([this] {
        // Filling the menu may replace the very function that fills it.
        if (const auto willOpen = menu_->onWillOpen) {
            willOpen();
        }
    }));
    changes_ = menu_->observe(lifetime_.guard([this] { rebuild(); }));
    rebuild();
}

QtMenu::~QtMenu() {
    if (widget_->isVisible()) {
        widget_->hide();
    }
    widget_->deleteLater();
}

void QtMenu::rebuild() {
    for (auto* const action : widget_->actions()) {
        widget_->removeAction(action);
        action->deleteLater();
    }
    // A submenu that is still part of the menu stays as it is: it may be the one that is open.
    auto oldSubmenus = std::exchange(submenus_, {});
    for (const auto& item : menu_->items()) {
        if (item.isSeparator) {
            widget_->addSeparator();
        } else {
            widget_->addAction(addItem(item, oldSubmenus));
        }
    }
}

QAction* QtMenu::addItem(const MenuItem& item, std::map<Menu*, std::unique_ptr<QtMenu>>& oldSubmenus) {
    auto* const action = new QAction(plainTitle(item.title, shownBy_), widget_);
    action->setCheckable(item.isChecked);
    action->setChecked(item.isChecked);
    action->setEnabled(item.isEnabled && (item.action || item.submenu));
    if (!item.keyEquivalent.empty()) {
        action->setShortcut(QKeySequence("Ctrl+" + QString::fromStdString(item.keyEquivalent).toUpper()));
        action->setShortcutVisibleInContextMenu(true);
    }
    if (item.submenu) {
        auto& submenu = submenus_[item.submenu.get()];
        if (const auto old = oldSubmenus.find(item.submenu.get()); old != oldSubmenus.end() && old->second) {
            submenu = std::move(old->second);
        } else if (!submenu) {
            submenu = std::make_unique<QtMenu>(item.submenu, shownBy_);
        }
        submenu->widget_->setAbove(widget_);
        action->setMenu(submenu->widget_);
    } else if (item.action) {
        QObject::connect(action, &QAction::triggered, action,
                         [action, chosen = item.action, isChecked = item.isChecked] {
                             // The mark is the program's to set, not the click's.
                             action->setChecked(isChecked);
                             chosen();
                         });
    }
    return action;
}

} // namespace tovik
