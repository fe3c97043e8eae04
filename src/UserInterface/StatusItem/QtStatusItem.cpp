// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/StatusItem/QtStatusItem.h"

#include "UserInterface/Controls/WindowSystem.h"
#include "UserInterface/StatusItem/QtMenu.h"

#include <QAbstractNativeEventFilter>
#include <QCursor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QMenu>
#include <QSystemTrayIcon>
#include <QTimer>

#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <utility>

namespace tovik {

using namespace std::chrono_literals;

namespace {

/// Panels that are starting offer their kinds of tray one after the other.
constexpr auto kPanelStart = 1000ms;
/// How long after its own start the program waits for a panel before it calls the tray missing.
constexpr auto kSessionStart = 3000ms;

constexpr auto kWatcher = "org.kde.StatusNotifierWatcher";
constexpr auto kWatcherPath = "/StatusNotifierWatcher";
/// A bus that hangs must not make the program hang.
constexpr int kBusPatienceMilliseconds = 500;

/// Where there is no session bus, asking for it could start one for us alone.
bool hasSessionBus() {
    if (qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS")) {
        return true;
    }
    const auto folder = qEnvironmentVariable("XDG_RUNTIME_DIR").toStdString();
    std::error_code failure;
    return !folder.empty() && std::filesystem::exists(folder + "/bus", failure);
}

} // namespace

/// Finds out whether this desktop has a tray, and notices when one appears. Main thread, after the
/// QGuiApplication. Asks the desktop itself: Qt would settle at the first question for all time.
class TrayWatch : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    explicit TrayWatch(std::function<void()> trayAppeared);
    ~TrayWatch() override;

    /// A panel that shows status notifier items.
    [[nodiscard]] bool hasNotifierHost() const;
    /// A panel that takes windows in, as X11 has it.
    [[nodiscard]] bool hasWindowTray() const;

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private slots:
    void notifierHostRegistered();

private:
    void watchBus();
    void watchDisplay();

    const std::function<void()> trayAppeared_;
    /// X11 atoms; 0 without an X display.
    std::uint32_t traySelection_ = 0;
    std::uint32_t managerMessage_ = 0;
};

TrayWatch::TrayWatch(std::function<void()> trayAppeared) : trayAppeared_(std::move(trayAppeared)) {
    if (hasSessionBus()) {
        watchBus();
    }
    watchDisplay();
}

TrayWatch::~TrayWatch() {
    if (qGuiApp) {
        qGuiApp->removeNativeEventFilter(this);
    }
}

void TrayWatch::watchBus() {
    auto bus = QDBusConnection::sessionBus();
    auto* const watcher =
        new QDBusServiceWatcher(kWatcher, bus, QDBusServiceWatcher::WatchForRegistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this, [this] { trayAppeared_(); });
    bus.connect(kWatcher, kWatcherPath, kWatcher, "StatusNotifierHostRegistered", this,
                SLOT(notifierHostRegistered()));
}

void TrayWatch::watchDisplay() {
    if (x11Connection()) {
        managerMessage_ = x11Atom("MANAGER");
        traySelection_ = x11Atom("_NET_SYSTEM_TRAY_S0");
        qGuiApp->installNativeEventFilter(this);
    }
}

void TrayWatch::notifierHostRegistered() {
    trayAppeared_();
}

bool TrayWatch::hasNotifierHost() const {
    if (!hasSessionBus()) {
        return false;
    }
    auto question =
        QDBusMessage::createMethodCall(kWatcher, kWatcherPath, "org.freedesktop.DBus.Properties", "Get");
    question.setArguments({QString(kWatcher), QString("IsStatusNotifierHostRegistered")});
    // Asking must not start a panel.
    question.setAutoStartService(false);
    const auto answer = QDBusConnection::sessionBus().call(question, QDBus::Block, kBusPatienceMilliseconds);
    return answer.type() == QDBusMessage::ReplyMessage && !answer.arguments().isEmpty() &&
           answer.arguments().first().value<QDBusVariant>().variant().toBool();
}

bool TrayWatch::hasWindowTray() const {
    return isX11SelectionOwned(traySelection_);
}

bool TrayWatch::nativeEventFilter(const QByteArray& eventType, void* message, qintptr* /*result*/) {
    if (eventType != "xcb_generic_event_t") {
        return false;
    }
    const auto* const event = static_cast<const xcb_generic_event_t*>(message);
    constexpr unsigned kSentBit = 0x80;
    if ((event->response_type & ~kSentBit) == XCB_CLIENT_MESSAGE) {
        const auto* const sent = reinterpret_cast<const xcb_client_message_event_t*>(event);
        if (sent->type == managerMessage_ && sent->data.data32[1] == traySelection_) {
            trayAppeared_();
        }
    }
    return false;
}

QtStatusItem::QtStatusItem(ImageRenderer renderImage, SystemLog& log)
    : renderImage_(std::move(renderImage)),
      log_(log),
      settling_(std::make_unique<QTimer>()),
      watch_(std::make_unique<TrayWatch>([this] { trayAppeared(); })) {
    settling_->setSingleShot(true);
    if (watch_->hasNotifierHost() || watch_->hasWindowTray()) {
        createIcon();
        return;
    }
    QObject::connect(settling_.get(), &QTimer::timeout, settling_.get(), [this] {
        if (watch_->hasNotifierHost() || watch_->hasWindowTray()) {
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
    if (watch_->hasNotifierHost()) {
        createIcon();
    } else if (watch_->hasWindowTray()) {
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
    isNotifierItem_ = watch_->hasNotifierHost();
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

#include "QtStatusItem.moc"
