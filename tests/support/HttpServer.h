// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tovik::test {

struct ReceivedRequest {
    std::string method;
    /// Path and query, as sent.
    std::string target;
    /// Names in lower case.
    std::map<std::string, std::string> headers;
    std::string body;
};

using HttpHeaders = std::vector<std::pair<std::string, std::string>>;

/// One request and the way to answer it, well or badly. On the connection's own thread, inside the handler.
/// Every write is on its way before the call returns; it answers false when the other side is gone.
class HttpExchange {
public:
    [[nodiscard]] const ReceivedRequest& request() const { return request_; }

    /// A whole answer; the connection stays open for the next request.
    bool answer(int status, const std::string& contentType, std::string_view body,
                const HttpHeaders& headers = {});
    bool answerJson(int status, std::string_view body) { return answer(status, "application/json", body); }

    /// A chunked answer in pieces, as streaming servers send it.
    bool beginChunked(int status, const std::string& contentType, const HttpHeaders& headers = {});
    bool sendChunk(std::string_view piece);
    bool endChunked() { return sendChunk({}); }

    /// Bytes as they are, for answers that no good server sends. The connection is closed afterwards.
    bool sendRaw(std::string_view bytes);

    /// Waits for HttpServer::release(), once for each call of it. False: the other side or the server is
    /// gone.
    [[nodiscard]] bool waitForRelease();
    /// Says nothing more until the other side gives up.
    void stall();
    /// Sends an endless body, one byte every so often, until the other side gives up.
    void drip(std::chrono::milliseconds pace);

private:
    friend class HttpServer;
    class Connection;

    HttpExchange(Connection& connection, ReceivedRequest request)
        : connection_(connection),
          request_(std::move(request)) {}

    Connection& connection_;
    ReceivedRequest request_;
};

/// A small HTTP/1.1 server on a free port of this machine, for tests of network services. Each connection has
/// a thread of its own, so an answer that takes its time holds up no other. A request ends with its handler;
/// one that wrote nothing closes the connection. A body needs a Content-Length.
class HttpServer {
public:
    using Handler = std::function<void(HttpExchange&)>;

    explicit HttpServer(Handler handler);
    /// Closes every connection and waits for the handlers.
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    /// "http://127.0.0.1:PORT"
    [[nodiscard]] std::string url() const;
    [[nodiscard]] int port() const;

    /// Takes effect with the next request.
    void setHandler(Handler handler);
    /// Lets one call of waitForRelease() go on, now or when it comes.
    void release();

    /// All requests so far, in the order in which they were complete.
    [[nodiscard]] std::vector<ReceivedRequest> requests() const;
    /// Blocks until so many requests are complete; false when that takes longer.
    [[nodiscard]] bool waitForRequests(std::size_t count,
                                       std::chrono::milliseconds patience = std::chrono::seconds(15)) const;
    /// Connections at this moment.
    [[nodiscard]] std::size_t openConnections() const;

private:
    friend class HttpExchange;
    struct State;

    std::shared_ptr<State> state_;
};

} // namespace tovik::test
