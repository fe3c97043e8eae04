// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/StatusItem/QtStatusItem.h"

#include "support/EventLoop.h"
#include "support/RecordingLog.h"

#include <QMenu>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tovik::test {
namespace {

/// On the screenless platform there is never a tray.
TEST(QtStatusItemWithoutTray, whenEverythingIsSet_itIsHarmlessAndTheLogSaysOnceThatThereIsNoTray) {
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    qunsetenv("XDG_RUNTIME_DIR");
    RecordingLog log;
    QtStatusItem statusItem([](const StatusImage&) { return QIcon(); }, log);
    EXPECT_FALSE(statusItem.hasButton());
    EXPECT_EQ(statusItem.menu(), nullptr);
    const auto menu = std::make_shared<Menu>();
    statusItem.setImage({});
    statusItem.setToolTip("Tovik Record");
    statusItem.setMenu(menu);
    menu->setItems({MenuItem::separator()});
    ASSERT_NE(statusItem.menu(), nullptr);
    EXPECT_EQ(statusItem.menu()->actions().size(), 1);
    EXPECT_TRUE(runUntil([&] { return !log.printed().empty(); }));
    EXPECT_THAT(log.printed(), testing::ElementsAre(testing::StartsWith("[TovikVoice] No system tray")));
    EXPECT_FALSE(statusItem.hasButton());
}

} // namespace
} // namespace tovik::test
