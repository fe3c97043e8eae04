// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/DBus/MicrophonePortal.h"

#include <QDBusConnection>
#include <QDBusPendingCall>
#include <QObject>
#include <QString>
#include <QVariantMap>

namespace tovik {

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

} // namespace tovik
