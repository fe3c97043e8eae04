// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/DBus/PortalQuestion.h"

#include "Linux/DBus/DBusMicrophonePortal.h"

#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>

#include <utility>

namespace tovik {

namespace {

constexpr auto kPortal = "org.freedesktop.portal.Desktop";
constexpr auto kRequestInterface = "org.freedesktop.portal.Request";
constexpr unsigned kAllowed = 0;

} // namespace

PortalQuestion::PortalQuestion(QDBusConnection bus, const QString& token, MicrophonePortal::Handler handler,
                               QObject* parent)
    : QObject(parent),
      bus_(std::move(bus)),
      handler_(std::move(handler)) {
    const auto sender = bus_.baseService().mid(1).replace('.', '_');
    listenOn("/org/freedesktop/portal/desktop/request/" + sender + "/" + token);
    const auto* const watcher =
        new QDBusServiceWatcher(kPortal, bus_, QDBusServiceWatcher::WatchForUnregistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this, [this] {
        end({MicrophonePortal::Verdict::undecided, "The desktop portal ended before it answered"});
    });
}

void PortalQuestion::listenOn(const QString& path) {
    bus_.disconnect(kPortal, path_, kRequestInterface, "Response", this, SLOT(respond(uint, QVariantMap)));
    path_ = path;
    bus_.connect(kPortal, path_, kRequestInterface, "Response", this, SLOT(respond(uint, QVariantMap)));
}

void PortalQuestion::put(const QDBusPendingCall& call) {
    const auto* const watcher = new QDBusPendingCallWatcher(call, this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* finished) {
        const QDBusPendingReply<QDBusObjectPath> reply = *finished;
        if (reply.isError()) {
            end(DBusMicrophonePortal::answerTo(reply.error()));
        } else if (reply.value().path() != path_) {
            // Portals of old choose the path themselves.
            listenOn(reply.value().path());
        }
    });
}

void PortalQuestion::respond(unsigned response, const QVariantMap& /*results*/) {
    end({response == kAllowed ? MicrophonePortal::Verdict::granted : MicrophonePortal::Verdict::denied, {}});
}

void PortalQuestion::end(const MicrophonePortal::Answer& answer) {
    if (const auto handler = std::exchange(handler_, nullptr)) {
        handler(answer);
    }
    deleteLater();
}

} // namespace tovik
