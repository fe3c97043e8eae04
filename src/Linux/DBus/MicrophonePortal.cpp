// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/DBus/MicrophonePortal.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QStringList>
#include <QVariantMap>

#include <unistd.h>

#include <limits>
#include <utility>

namespace tovik {

namespace {

constexpr auto kPortal = "org.freedesktop.portal.Desktop";
constexpr auto kRequestInterface = "org.freedesktop.portal.Request";
constexpr unsigned kAllowed = 0;
/// No process has it: a portal that would answer for this one refuses the number without asking the user.
constexpr unsigned kNobody = std::numeric_limits<unsigned>::max();
/// A portal that hangs must not keep the microphone away for ever.
constexpr int kLookPatienceMilliseconds = 5'000;
/// The reply says that the question was put; only then may the user think about it for as long as he likes.
constexpr int kAskPatienceMilliseconds = 25'000;

} // namespace

/// One question to the portal on its way, which the user may take long to answer. Deletes itself once it has
/// answered.
class PortalQuestion : public QObject {
    Q_OBJECT

public:
    /// token: the last part of the path on which the answer comes. Made before the question is put, since the
    /// answer may be faster than the reply.
    PortalQuestion(QDBusConnection bus, const QString& token, MicrophonePortal::Handler handler,
                   QObject* parent);

    /// The call that puts the question.
    void put(const QDBusPendingCall& call);

private slots:
    void respond(unsigned response, const QVariantMap& results);

private:
    void listenOn(const QString& path);
    void end(const MicrophonePortal::Answer& answer);

    QDBusConnection bus_;
    MicrophonePortal::Handler handler_;
    QString path_;
};

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

DBusMicrophonePortal::DBusMicrophonePortal(std::function<QDBusConnection()> bus) : bus_(std::move(bus)) {}

QDBusPendingCall DBusMicrophonePortal::accessDevice(unsigned processIdentifier, const QString& token,
                                                    int patienceMilliseconds) {
    auto call = QDBusMessage::createMethodCall(kPortal, "/org/freedesktop/portal/desktop",
                                               "org.freedesktop.portal.Device", "AccessDevice");
    call.setArguments({processIdentifier, QStringList{"microphone"}, QVariantMap{{"handle_token", token}}});
    return bus_().asyncCall(call, patienceMilliseconds);
}

bool DBusMicrophonePortal::answersWithoutBus(const Handler& handler) {
    if (bus_().isConnected()) {
        return false;
    }
    // Calls on a connection that is none never finish.
    QMetaObject::invokeMethod(
        this,
        [handler] {
            handler({Verdict::leavesItToTheServer, "There is no session bus"});
        },
        Qt::QueuedConnection);
    return true;
}

void DBusMicrophonePortal::look(Handler handler) {
    if (answersWithoutBus(handler)) {
        return;
    }
    const auto token = QString("look%1").arg(++questions_);
    auto* const watcher =
        new QDBusPendingCallWatcher(accessDevice(kNobody, token, kLookPatienceMilliseconds), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [handler = std::move(handler)](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                handler(finished->isError() ? answerTo(finished->error()) : Answer{});
            });
}

void DBusMicrophonePortal::ask(Handler handler) {
    if (answersWithoutBus(handler)) {
        return;
    }
    const auto token = QString("ask%1").arg(++questions_);
    auto* const question = new PortalQuestion(bus_(), token, std::move(handler), this);
    question->put(accessDevice(static_cast<unsigned>(getpid()), token, kAskPatienceMilliseconds));
}

MicrophonePortal::Answer DBusMicrophonePortal::answerTo(const QDBusError& error) {
    auto reason = (error.name() + ": " + error.message()).toStdString();
    if (error.name() == "org.freedesktop.portal.Error.InvalidArgument") {
        return {Verdict::undecided, std::move(reason)};
    }
    // The same name stands for both: that it answers nobody in a sandbox, and that the microphone is switched
    // off. The sentences are not translated.
    if (error.name() == "org.freedesktop.portal.Error.NotAllowed" && error.message().endsWith("disabled")) {
        return {Verdict::switchedOff, std::move(reason)};
    }
    return {Verdict::leavesItToTheServer, std::move(reason)};
}

} // namespace tovik

#include "MicrophonePortal.moc"
