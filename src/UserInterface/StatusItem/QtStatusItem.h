// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/SystemLog.h"
#include "Platform/UserInterface.h"

#include <QIcon>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class QMenu;
class QSystemTrayIcon;
class QTimer;

namespace tovik {

class QtMenu;
class TrayWatch;

/// An icon in the tray: a status notifier item where the desktop shows those, else a window in an X11 tray.
/// Where neither is there yet, the icon appears as soon as one is; when that does not happen soon, the log
/// says so once. Both mouse buttons open the menu. After the QApplication.
class QtStatusItem : public StatusItem {
public:
    using ImageRenderer = std::function<QIcon(const StatusImage&)>;

    /// The log must outlive the status item.
    QtStatusItem(ImageRenderer renderImage, SystemLog& log);
    ~QtStatusItem() override;

    [[nodiscard]] bool hasButton() const override;
    void setImage(const StatusImage& image) override;
    void setToolTip(const std::string& text) override;
    void setMenu(std::shared_ptr<Menu> menu) override;

    /// The menu as it shows in the tray, for other places to pop up; also without a tray. Null before
    /// setMenu.
    [[nodiscard]] QMenu* menu() const;

private:
    void trayAppeared();
    void sayThatThereIsNoTray();
    void createIcon();
    void giveIconItsMenu();
    void showMenu();

    const ImageRenderer renderImage_;
    SystemLog& log_;
    std::optional<StatusImage> image_;
    QString toolTip_;
    std::shared_ptr<Menu> described_;
    std::unique_ptr<QtMenu> menu_;
    /// The same menu for a panel of status notifier items.
    std::unique_ptr<QtMenu> panelMenu_;
    bool isNotifierItem_ = false;
    std::unique_ptr<QTimer> settling_;
    std::unique_ptr<QSystemTrayIcon> icon_;
    std::unique_ptr<TrayWatch> watch_;
};

} // namespace tovik
