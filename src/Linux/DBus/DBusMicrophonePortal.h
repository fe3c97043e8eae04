// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/DBus/MicrophonePortal.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusPendingCall>
#include <QObject>
#include <QString>

#include <functional>

namespace tovik {

/// The portal on the session bus.
class DBusMicrophonePortal : public QObject, public MicrophonePortal {
    Q_OBJECT

public:
    /// bus is called at the first use: where there is no session bus, asking for it could start one.
    explicit DBusMicrophonePortal(std::function<QDBusConnection()> bus);

    void look(Handler handler) override;
    void ask(Handler handler) override;

    /// What an error in answer to a question says.
    [[nodiscard]] static Answer answerTo(const QDBusError& error);

private:
    [[nodiscard]] bool answersWithoutBus(const Handler& handler);
    [[nodiscard]] QDBusPendingCall accessDevice(unsigned processIdentifier, const QString& token,
                                                int patienceMilliseconds);

    const std::function<QDBusConnection()> bus_;
    int questions_ = 0;
};

} // namespace tovik
