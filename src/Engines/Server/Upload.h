// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Server/HttpConnection.h"

#include <QElapsedTimer>
#include <QTimer>

#include <functional>
#include <memory>
#include <string>

namespace tovik {

/// One request to the server and what it takes to get it answered: a connection that is opened ahead, a
/// second attempt where the first was lost on the way, patience where the server asks for it. For one thread
/// that has a Qt event loop.
class Upload {
public:
    using Outcome = HttpConnection::Outcome;

    /// Firewalls on the way silently forget a connection on which nothing comes for half a minute or more.
    static constexpr Seconds oldest{20};

    /// oldestConnection: one that waits for its request that long is replaced.
    explicit Upload(const ServerSettings& settings, Seconds oldestConnection = oldest);
    Upload(const Upload&) = delete;
    Upload& operator=(const Upload&) = delete;

    /// Opens the connection, and a fresh one now and then until there is something to send.
    void open();
    /// Once only. The callback is called once, later, unless the object is gone by then.
    void send(std::string request, std::function<void(const Outcome&)> callback);

private:
    void connect();
    void attempt();
    void answered(const Outcome& outcome);
    void attemptAfter(Seconds pause);
    [[nodiscard]] Seconds timeLeft() const;
    [[nodiscard]] bool hasTimeFor(Seconds pause) const { return timeLeft() > pause; }

    const ServerSettings settings_;
    std::unique_ptr<HttpConnection> connection_;
    std::string request_;
    std::function<void(const Outcome&)> callback_;
    QElapsedTimer sinceSend_;
    /// For all attempts together.
    Seconds patience_{0};
    QTimer again_;
    QTimer renew_;
    bool wasRepeated_ = false;
};

} // namespace tovik
