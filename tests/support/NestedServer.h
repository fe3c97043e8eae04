// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QProcess>

#include <memory>
#include <string>

namespace tovik::test {

/// An X server inside a window of the staged one, as remote desktops have it: held keys repeat as releases
/// and presses.
class NestedServer {
public:
    /// Returns when it is ready.
    NestedServer();
    NestedServer(const NestedServer&) = delete;
    NestedServer& operator=(const NestedServer&) = delete;
    ~NestedServer();

    [[nodiscard]] const std::string& display() const { return display_; }
    /// Its window on the staged server.
    [[nodiscard]] unsigned long window() const { return window_; }
    /// The presses and releases that it has told of so far.
    [[nodiscard]] int strokes();

private:
    struct Connection;

    QProcess process_;
    std::string display_;
    unsigned long window_ = 0;
    std::unique_ptr<Connection> connection_;
};

} // namespace tovik::test
