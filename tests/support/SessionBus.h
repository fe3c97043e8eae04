// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "support/TemporaryFolder.h"

#include <QProcess>

#include <string>

namespace tovik::test {

/// A session bus of a test's own, with nothing on it; the user's own bus is never touched. Needs a
/// QCoreApplication and dbus-daemon. It becomes this process's session bus, so there can be one in a process,
/// made before anything uses the bus.
class SessionBus {
public:
    /// Returns when it takes connections. Throws when it does not.
    SessionBus();
    ~SessionBus();
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;

    [[nodiscard]] const std::string& address() const { return address_; }
    /// For whatever else the test runs on it.
    [[nodiscard]] const TemporaryFolder& folder() const { return folder_; }

private:
    TemporaryFolder folder_;
    const std::string address_;
    QProcess bus_;
};

} // namespace tovik::test
