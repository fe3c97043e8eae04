// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/QtStatusItem.h"

#include <QCursor>
#include <QGuiApplication>
#include <QMenu>
#include <QSystemTrayIcon>
#include <QTimer>

#include <chrono>
#include <utility>

namespace tovik {

namespace {

using namespace std::chrono_literals;

/// Panels that are starting offer their kinds of tray one after the other.
constexpr auto kPanelStart = 1000ms;
/// How long after its own start the program waits for a panel before it calls the tray missing.
constexpr auto kSessionStart = 3000ms;

} // namespace

QtStatusItem::QtStatusItem(ImageRenderer renderImage, SystemLog& log)
    : renderImage_(std::move(renderImage)),
      log_(log),
      settling_(std::make_unique<QTimer>()),
      watch_([this] { trayAppeared(); }) {
    settling_->setSingleShot(true);
    if (watch_.hasNotifierHost() || watch_.hasWindowTray()) {
        createIcon();
        return;
    }
    QObject::connect(settling_.get(), &QTimer::timeout, settling_.get(), [this] {
        if (watch_.hasNotifierHost() || watch_.hasWindowTray()) {
            createIcon();
        } else {
            sayThatThereIsNoTray();
        }
    });
    settling_->start(kSessionStart);
}

QtStatusItem::~QtStatusItem() = default;

bool QtStatusItem::hasButton() const {
    return icon_ != nullptr;
}

void QtStatusItem::setImage(const StatusImage& image) {
    image_ = image;
    if (icon_) {
        icon_->setIcon(renderImage_(image));
    }
}

void QtStatusItem::setToolTip(const std::string& text) {
    toolTip_ = QString::fromStdString(text);
    if (icon_) {
        icon_->setToolTip(toolTip_);
    }
}

void QtStatusItem::setMenu(std::shared_ptr<Menu> menu) {
    auto shown = menu ? std::make_unique<QtMenu>(menu) : nullptr;
    // The icon lets go of the old menu before that goes.
    std::swap(menu_, shown);
    auto oldPanelMenu = std::move(panelMenu_);
    described_ = std::move(menu);
    giveIconItsMenu();
}

void QtStatusItem::giveIconItsMenu() {
    if (!icon_) {
        return;
    }
    if (isNotifierItem_ && described_) {
        panelMenu_ = std::make_unique<QtMenu>(described_, QtMenu::ShownBy::notifierPanel);
        icon_->setContextMenu(&panelMenu_->widget());
    } else {
        icon_->setContextMenu(menu_ ? &menu_->widget() : nullptr);
    }
}

QMenu* QtStatusItem::menu() const {
    return menu_ ? &menu_->widget() : nullptr;
}

void QtStatusItem::trayAppeared() {
    if (icon_) {
        return;
    }
    if (watch_.hasNotifierHost()) {
        createIcon();
    } else if (watch_.hasWindowTray()) {
        settling_->start(kPanelStart);
    }
}

void QtStatusItem::sayThatThereIsNoTray() {
    log_.printLine(
        "[TovikVoice] No system tray on this desktop: the menu bar icon is missing until one appears. "
        "The main window and the talk key work without it.");
}

void QtStatusItem::createIcon() {
    settling_->stop();
    // Qt, too, decides now, and for all time.
    isNotifierItem_ = watch_.hasNotifierHost();
    icon_ = std::make_unique<QSystemTrayIcon>();
    icon_->setToolTip(toolTip_.isEmpty() ? QGuiApplication::applicationDisplayName() : toolTip_);
    icon_->setIcon(renderImage_(image_.value_or(StatusImage{})));
    giveIconItsMenu();
    QObject::connect(icon_.get(), &QSystemTrayIcon::activated, icon_.get(),
                     [this](QSystemTrayIcon::ActivationReason reason) {
                         if (reason == QSystemTrayIcon::Trigger) {
                             showMenu();
                         }
                     });
    // A panel looks at the menu as soon as the icon is there: by then whoever is just setting up the program
    // has given it one.
    QTimer::singleShot(0, icon_.get(), &QSystemTrayIcon::show);
}

void QtStatusItem::showMenu() {
    if (menu_) {
        menu_->widget().popup(QCursor::pos());
    }
}

} // namespace tovik
