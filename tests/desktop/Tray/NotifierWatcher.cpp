// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "NotifierWatcher.h"

#include <gtest/gtest.h>

namespace tovik::test {

namespace {

constexpr auto kConnection = "notifier watcher";

} // namespace

NotifierWatcher::NotifierWatcher(bool isHostRegistered)
    : isHostRegistered_(isHostRegistered),
      bus_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, kConnection)) {
    EXPECT_TRUE(bus_.registerObject("/StatusNotifierWatcher", this,
                                    QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals |
                                        QDBusConnection::ExportAllProperties));
    EXPECT_TRUE(bus_.registerService("org.kde.StatusNotifierWatcher"));
}

NotifierWatcher::~NotifierWatcher() {
    bus_.unregisterService("org.kde.StatusNotifierWatcher");
    QDBusConnection::disconnectFromBus(kConnection);
}

void NotifierWatcher::registerHost() {
    isHostRegistered_ = true;
    emit StatusNotifierHostRegistered();
}

void NotifierWatcher::RegisterStatusNotifierItem(const QString& service) {
    items_.append(service);
    emit StatusNotifierItemRegistered(service);
}

} // namespace tovik::test
