// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/FakeDesktopPortal.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QVariantMap>

#include <limits>
#include <stdexcept>

namespace tovik::test {

namespace {

constexpr auto kConnection = "desktop portal of the test";
constexpr auto kService = "org.freedesktop.portal.Desktop";
constexpr auto kPath = "/org/freedesktop/portal/desktop";
constexpr unsigned kNobody = std::numeric_limits<unsigned>::max();

} // namespace

FakeDesktopPortal::FakeDesktopPortal()
    : bus_(QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), kConnection)) {
    if (!bus_.registerVirtualObject(kPath, this, QDBusConnection::SubPath) ||
        !bus_.registerService(kService)) {
        throw std::runtime_error("the test's portal did not get its name");
    }
}

FakeDesktopPortal::~FakeDesktopPortal() {
    bus_.unregisterService(kService);
    QDBusConnection::disconnectFromBus(kConnection);
}

void FakeDesktopPortal::refuse(const QString& name, const QString& message) {
    errorName_ = name;
    errorMessage_ = message;
}

bool FakeDesktopPortal::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    if (message.interface() != "org.freedesktop.portal.Device" || message.member() != "AccessDevice") {
        return false;
    }
    const auto arguments = message.arguments();
    const auto options = qdbus_cast<QVariantMap>(arguments.at(2));
    calls_.push_back({arguments.at(0).toUInt(), arguments.at(1).toStringList()});
    if (!errorName_.isEmpty()) {
        return connection.send(message.createErrorReply(errorName_, errorMessage_));
    }
    if (calls_.back().processIdentifier == kNobody) {
        return connection.send(message.createErrorReply("org.freedesktop.portal.Error.InvalidArgument",
                                                        "Invalid pid requested"));
    }
    ++dialogs_;
    const auto sender = message.service().mid(1).replace('.', '_');
    questionPath_ = QString(kPath) + "/request/" + sender + "/" +
                    (choosesOwnPaths_ ? QString("its_own") : options.value("handle_token").toString());
    if (answerAtOnce_) {
        answer(*answerAtOnce_);
    }
    return connection.send(message.createReply(QVariant::fromValue(QDBusObjectPath(questionPath_))));
}

void FakeDesktopPortal::answer(unsigned response) {
    auto signal = QDBusMessage::createSignal(questionPath_, "org.freedesktop.portal.Request", "Response");
    signal.setArguments({response, QVariantMap()});
    bus_.send(signal);
}

QString FakeDesktopPortal::introspect(const QString& /*path*/) const {
    return {};
}

} // namespace tovik::test
