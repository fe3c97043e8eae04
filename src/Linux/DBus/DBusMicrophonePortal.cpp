// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/DBus/DBusMicrophonePortal.h"

#include "Linux/DBus/PortalQuestion.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QStringList>
#include <QVariantMap>

#include <unistd.h>

#include <limits>
#include <utility>

namespace tovik {

namespace {

/// No process has it: a portal that would answer for this one refuses the number without asking the user.
constexpr unsigned kNobody = std::numeric_limits<unsigned>::max();
/// A portal that hangs must not keep the microphone away for ever.
constexpr int kLookPatienceMilliseconds = 5'000;
/// The reply says that the question was put; only then may the user think about it for as long as he likes.
constexpr int kAskPatienceMilliseconds = 25'000;

} // namespace

DBusMicrophonePortal::DBusMicrophonePortal(std::function<QDBusConnection()> bus) : bus_(std::move(bus)) {}

QDBusPendingCall DBusMicrophonePortal::accessDevice(unsigned processIdentifier, const QString& token,
                                                    int patienceMilliseconds) {
    auto call =
        QDBusMessage::createMethodCall("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
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
        this, [handler] { handler({Verdict::leavesItToTheServer, "There is no session bus"}); },
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
