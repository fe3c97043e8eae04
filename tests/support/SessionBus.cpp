// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/SessionBus.h"

#include "support/EventLoop.h"

#include <QString>

#include <cstdlib>
#include <stdexcept>

namespace tovik::test {

namespace {

/// No folder of services: nothing is started on this bus but what the test starts.
constexpr auto kBusConfiguration = R"(<busconfig>
  <type>session</type>
  <listen>unix:path=%1</listen>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

} // namespace

SessionBus::SessionBus() : address_("unix:path=" + folder_ / "bus") {
    const auto configuration = folder_ / "bus.conf";
    writeFile(configuration,
              QString(kBusConfiguration).arg(QString::fromStdString(folder_ / "bus")).toStdString());
    bus_.setProcessChannelMode(QProcess::SeparateChannels);
    bus_.setStandardErrorFile(QProcess::nullDevice());
    bus_.start("dbus-daemon",
               {"--nofork", "--print-address", "--config-file", QString::fromStdString(configuration)});
    if (!runUntil([this] { return bus_.canReadLine(); })) {
        throw std::runtime_error("the test's session bus did not start");
    }
    ::setenv("DBUS_SESSION_BUS_ADDRESS", address_.c_str(), 1);
}

SessionBus::~SessionBus() {
    bus_.kill();
    bus_.waitForFinished();
}

} // namespace tovik::test
