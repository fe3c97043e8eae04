// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/TrayWatch.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QGuiApplication>

#include <xcb/xcb.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <utility>

namespace tovik {

namespace {

constexpr auto kWatcher = "org.kde.StatusNotifierWatcher";
constexpr auto kWatcherPath = "/StatusNotifierWatcher";
/// A bus that hangs must not make the program hang.
constexpr int kBusPatienceMilliseconds = 500;

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply>
using Owned = std::unique_ptr<Reply, FreeReply>;

/// Null without an X display.
xcb_connection_t* displayConnection() {
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

std::uint32_t atomNamed(xcb_connection_t* connection, const std::string& name) {
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
    const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : 0;
}

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
    auto* const connection = displayConnection();
    if (!connection) {
        return;
    }
    managerMessage_ = atomNamed(connection, "MANAGER");
    traySelection_ = atomNamed(connection, "_NET_SYSTEM_TRAY_S0");
    qGuiApp->installNativeEventFilter(this);
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
    auto* const connection = displayConnection();
    if (!connection || traySelection_ == 0) {
        return false;
    }
    const auto cookie = xcb_get_selection_owner(connection, traySelection_);
    const Owned<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(connection, cookie, nullptr));
    return reply && reply->owner != XCB_NONE;
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

} // namespace tovik
