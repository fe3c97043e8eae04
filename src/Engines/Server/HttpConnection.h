// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Server/HttpResponse.h"
#include "Engines/Server/ServerSettings.h"

#include <QObject>
#include <QSslSocket>
#include <QTimer>

#include <functional>
#include <optional>
#include <string>
#include <variant>

namespace tovik {

/// Why no response came.
struct HttpFailure {
    enum class Kind {
        /// There is no connection, or none that can be trusted.
        notConnected,
        timedOut,
        /// The connection died before any byte of a response came back.
        diedUnanswered,
        /// The response is cut short or none of HTTP.
        broken,
    };
    Kind kind = Kind::notConnected;
    /// A sentence without its full stop.
    std::string description;
};

/// One connection to a server and one request on it. The server's certificate must be good. For one thread
/// that has a Qt event loop; callbacks come from there and never from inside a call.
class HttpConnection {
public:
    using Outcome = std::variant<HttpResponse, HttpFailure>;

    struct Timeouts {
        Seconds connect;
        /// How long the server may take in nothing while the request is sent; from the end of that to the
        /// first byte of the response.
        Seconds firstByte;
        /// From the call to the end of sending.
        Seconds sending;
        /// From the end of sending to the last byte of the response.
        Seconds whole;
    };

    explicit HttpConnection(ServerAddress address);
    ~HttpConnection();
    HttpConnection(const HttpConnection&) = delete;
    HttpConnection& operator=(const HttpConnection&) = delete;

    /// Begins to connect.
    void open();
    /// Whether a request could still be answered on it: it is open, or on its way to be.
    [[nodiscard]] bool isAlive() const;
    /// Sends a request, as soon as there is a connection; once only. The callback is called once, unless the
    /// object is gone by then.
    void send(std::string request, const Timeouts& timeouts, std::function<void(const Outcome&)> callback);

private:
    enum class Step { connecting, sending, waiting, receiving, over };

    void connected();
    void sent();
    void read();
    void disconnected();
    void failed();
    void stalled();
    void outOfTime();
    void finish(const Outcome& outcome);
    void fail(HttpFailure::Kind kind, const std::string& what);
    [[nodiscard]] std::string socketError() const;
    [[nodiscard]] static int milliseconds(Seconds time);

    const ServerAddress address_;
    QSslSocket socket_;
    QTimer stepTimer_;
    QTimer wholeTimer_;
    Step step_ = Step::connecting;
    bool isReady_ = false;
    std::optional<HttpFailure> earlyFailure_;
    std::string request_;
    Timeouts timeouts_{};
    std::function<void(const Outcome&)> callback_;
    HttpResponseReader reader_;
};

} // namespace tovik
