// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QStringList>

namespace tovik::test {

/// The panel's side of the status notifier protocol, on the session bus, for as long as it lives.
class NotifierWatcher : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isHostRegistered)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ items)

public:
    /// A watcher may come before the panel that shows the items.
    explicit NotifierWatcher(bool isHostRegistered = true);
    ~NotifierWatcher() override;

    void registerHost();

    [[nodiscard]] bool isHostRegistered() const { return isHostRegistered_; }
    [[nodiscard]] int protocolVersion() const { return 0; }
    /// The bus names of the items, in the order in which they came.
    [[nodiscard]] QStringList items() const { return items_; }

public slots:
    void RegisterStatusNotifierItem(const QString& service);

signals:
    void StatusNotifierHostRegistered();
    void StatusNotifierItemRegistered(const QString& service);

private:
    bool isHostRegistered_;
    QStringList items_;
    QDBusConnection bus_;
};

} // namespace tovik::test
