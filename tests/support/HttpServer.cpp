// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/HttpServer.h"

#include "Platform/Posix.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <condition_variable>
#include <list>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <thread>

namespace tovik::test {

namespace {

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

/// The head of a request without its empty line; nothing when it makes no sense.
std::optional<ReceivedRequest> parseHead(std::string_view head) {
    ReceivedRequest request;
    const auto firstLine = head.substr(0, head.find("\r\n"));
    const auto afterMethod = firstLine.find(' ');
    const auto afterTarget = firstLine.rfind(' ');
    if (afterMethod == std::string_view::npos || afterTarget <= afterMethod) {
        return std::nullopt;
    }
    request.method = firstLine.substr(0, afterMethod);
    request.target = firstLine.substr(afterMethod + 1, afterTarget - afterMethod - 1);
    head.remove_prefix(std::min(firstLine.size() + 2, head.size()));
    while (!head.empty()) {
        const auto line = head.substr(0, head.find("\r\n"));
        const auto colon = line.find(':');
        if (colon == std::string_view::npos) {
            return std::nullopt;
        }
        request.headers[lowerCase(line.substr(0, colon))] = trimmed(line.substr(colon + 1));
        head.remove_prefix(std::min(line.size() + 2, head.size()));
    }
    return request;
}

std::size_t contentLength(const ReceivedRequest& request) {
    std::size_t length = 0;
    if (const auto found = request.headers.find("content-length"); found != request.headers.end()) {
        const auto& text = found->second;
        std::from_chars(text.data(), text.data() + text.size(), length);
    }
    return length;
}

std::string headText(int status, const std::string& contentType, const HttpHeaders& headers) {
    auto text = "HTTP/1.1 " + std::to_string(status) + (status < 400 ? " OK" : " Error") +
                "\r\nContent-Type: " + contentType + "\r\n";
    for (const auto& [name, value] : headers) {
        text += name;
        text += ": ";
        text += value;
        text += "\r\n";
    }
    return text;
}

UnixFd listenOnFreePort(int& port) {
    UnixFd listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (!listener || ::bind(listener.get(), generic, length) != 0 || ::listen(listener.get(), 64) != 0 ||
        ::getsockname(listener.get(), generic, &length) != 0) {
        throw std::runtime_error("no port for the test's HTTP server");
    }
    port = ntohs(address.sin_port);
    return listener;
}

} // namespace

struct HttpServer::State {
    mutable std::mutex mutex;
    mutable std::condition_variable changed;
    Handler handler;
    std::vector<ReceivedRequest> requests;
    std::size_t releases = 0;
    bool isEnding = false;
    int port = 0;
    UnixFd listener;
    std::list<std::pair<std::thread, std::shared_ptr<HttpExchange::Connection>>> connections;
    std::thread acceptor;

    void acceptConnections(const std::shared_ptr<State>& self);
    void serve(HttpExchange::Connection& connection);
};

class HttpExchange::Connection {
public:
    Connection(UnixFd socket, HttpServer::State& server) : socket_(std::move(socket)), server_(server) {
        const int on = 1;
        ::setsockopt(socket_.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    }

    [[nodiscard]] HttpServer::State& server() { return server_; }

    [[nodiscard]] bool send(std::string_view bytes) {
        hasWritten_ = true;
        while (!bytes.empty()) {
            const auto sent = ::send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (sent <= 0) {
                return false;
            }
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        }
        return true;
    }

    [[nodiscard]] std::optional<ReceivedRequest> receiveRequest() {
        auto endOfHead = std::string::npos;
        while ((endOfHead = received_.find("\r\n\r\n")) == std::string::npos) {
            if (!receiveMore()) {
                return std::nullopt;
            }
        }
        auto request = parseHead(std::string_view(received_).substr(0, endOfHead));
        received_.erase(0, endOfHead + 4);
        if (!request) {
            return std::nullopt;
        }
        const auto length = contentLength(*request);
        if (request->headers.contains("expect") && !send("HTTP/1.1 100 Continue\r\n\r\n")) {
            return std::nullopt;
        }
        while (received_.size() < length) {
            if (!receiveMore()) {
                return std::nullopt;
            }
        }
        request->body = received_.substr(0, length);
        received_.erase(0, length);
        hasWritten_ = false;
        return request;
    }

    /// True when the other side has gone within the time.
    [[nodiscard]] bool leavesWithin(std::chrono::milliseconds time) {
        pollfd watched{socket_.get(), POLLIN | POLLRDHUP, 0};
        return ::poll(&watched, 1, static_cast<int>(time.count())) > 0;
    }

    void close() { ::shutdown(socket_.get(), SHUT_RDWR); }
    void closeAfterThis() { staysOpen_ = false; }
    [[nodiscard]] bool staysOpen() const { return staysOpen_ && hasWritten_; }
    bool isOver = false;

private:
    [[nodiscard]] bool receiveMore() {
        char buffer[16384];
        const auto got = ::recv(socket_.get(), buffer, sizeof buffer, 0);
        if (got <= 0) {
            return false;
        }
        received_.append(buffer, static_cast<std::size_t>(got));
        return true;
    }

    UnixFd socket_;
    HttpServer::State& server_;
    std::string received_;
    bool hasWritten_ = false;
    bool staysOpen_ = true;
};

bool HttpExchange::answer(int status, const std::string& contentType, std::string_view body,
                          const HttpHeaders& headers) {
    auto text = headText(status, contentType, headers);
    text += "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n";
    return connection_.send(text.append(body));
}

bool HttpExchange::beginChunked(int status, const std::string& contentType, const HttpHeaders& headers) {
    return connection_.send(headText(status, contentType, headers) + "Transfer-Encoding: chunked\r\n\r\n");
}

bool HttpExchange::sendChunk(std::string_view piece) {
    char size[20];
    const auto end = std::to_chars(std::begin(size), std::end(size), piece.size(), 16).ptr;
    return connection_.send(std::string(std::begin(size), end).append("\r\n").append(piece).append("\r\n"));
}

bool HttpExchange::sendRaw(std::string_view bytes) {
    connection_.closeAfterThis();
    return connection_.send(bytes);
}

bool HttpExchange::waitForRelease() {
    auto& server = connection_.server();
    while (true) {
        {
            std::unique_lock lock(server.mutex);
            server.changed.wait_for(lock, std::chrono::milliseconds(5),
                                    [&] { return server.isEnding || server.releases > 0; });
            if (server.isEnding) {
                return false;
            }
            if (server.releases > 0) {
                --server.releases;
                return true;
            }
        }
        if (connection_.leavesWithin(std::chrono::milliseconds(0))) {
            return false;
        }
    }
}

void HttpExchange::stall() {
    connection_.closeAfterThis();
    while (!connection_.leavesWithin(std::chrono::hours(1))) {
    }
}

void HttpExchange::drip(std::chrono::milliseconds pace) {
    connection_.closeAfterThis();
    if (!connection_.send(headText(200, "application/json", {}) + "Content-Length: 1000000\r\n\r\n")) {
        return;
    }
    while (!connection_.leavesWithin(pace) && connection_.send(" ")) {
    }
}

void HttpServer::State::serve(HttpExchange::Connection& connection) {
    while (auto request = connection.receiveRequest()) {
        Handler handle;
        {
            const std::lock_guard lock(mutex);
            requests.push_back(*request);
            handle = handler;
        }
        changed.notify_all();
        HttpExchange exchange(connection, std::move(*request));
        handle(exchange);
        if (!connection.staysOpen()) {
            break;
        }
    }
    connection.close();
    const std::lock_guard lock(mutex);
    connection.isOver = true;
    changed.notify_all();
}

void HttpServer::State::acceptConnections(const std::shared_ptr<State>& self) {
    while (true) {
        UnixFd socket(::accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC));
        const std::lock_guard lock(mutex);
        if (isEnding || !socket) {
            return;
        }
        auto connection = std::make_shared<HttpExchange::Connection>(std::move(socket), *this);
        connections.emplace_back(std::thread([self, connection] { self->serve(*connection); }), connection);
    }
}

HttpServer::HttpServer(Handler handler) : state_(std::make_shared<State>()) {
    state_->handler = std::move(handler);
    state_->listener = listenOnFreePort(state_->port);
    state_->acceptor = std::thread([state = state_] { state->acceptConnections(state); });
}

HttpServer::~HttpServer() {
    {
        const std::lock_guard lock(state_->mutex);
        state_->isEnding = true;
        for (const auto& [thread, connection] : state_->connections) {
            connection->close();
        }
    }
    state_->changed.notify_all();
    ::shutdown(state_->listener.get(), SHUT_RDWR);
    state_->acceptor.join();
    for (auto& [thread, connection] : state_->connections) {
        thread.join();
    }
}

std::string HttpServer::url() const {
    return "http://127.0.0.1:" + std::to_string(state_->port);
}

int HttpServer::port() const {
    return state_->port;
}

void HttpServer::setHandler(Handler handler) {
    const std::lock_guard lock(state_->mutex);
    state_->handler = std::move(handler);
}

void HttpServer::release() {
    {
        const std::lock_guard lock(state_->mutex);
        ++state_->releases;
    }
    state_->changed.notify_all();
}

std::vector<ReceivedRequest> HttpServer::requests() const {
    const std::lock_guard lock(state_->mutex);
    return state_->requests;
}

bool HttpServer::waitForRequests(std::size_t count, std::chrono::milliseconds patience) const {
    std::unique_lock lock(state_->mutex);
    return state_->changed.wait_for(lock, patience, [&] { return state_->requests.size() >= count; });
}

std::size_t HttpServer::openConnections() const {
    const std::lock_guard lock(state_->mutex);
    return static_cast<std::size_t>(
        std::ranges::count_if(state_->connections, [](const auto& entry) { return !entry.second->isOver; }));
}

} // namespace tovik::test
