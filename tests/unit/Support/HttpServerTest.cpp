// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/HttpServer.h"

#include "Platform/Posix.h"

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace tovik::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// A bare connection, on which a test says exactly what it wants.
class Caller {
public:
    explicit Caller(const HttpServer& server) : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<std::uint16_t>(server.port()));
        EXPECT_EQ(::connect(socket_.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    }

    void say(std::string_view bytes) {
        EXPECT_EQ(::send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(bytes.size()));
    }
    /// Until what was heard ends so, or the server hangs up.
    std::string hearUntil(std::string_view end) {
        std::string heard;
        char byte = 0;
        while (!heard.ends_with(end) && ::recv(socket_.get(), &byte, 1, 0) == 1) {
            heard += byte;
        }
        return heard;
    }
    std::string hearAll() {
        std::string heard;
        char byte = 0;
        while (::recv(socket_.get(), &byte, 1, 0) == 1) {
            heard += byte;
        }
        return heard;
    }

private:
    UnixFd socket_;
};

void answerOk(HttpExchange& exchange) {
    exchange.answerJson(200, "{\"ok\":true}");
}

TEST(HttpServer, aRequest_arrivesWithAllItsParts) {
    HttpServer server(answerOk);
    Caller caller(server);
    caller.say(
        "POST /translate?x=1 HTTP/1.1\r\nHost: a\r\nX-Name:  two words \r\nContent-Length: 5\r\n\r\nhello");
    EXPECT_THAT(caller.hearUntil("true}"), StartsWith("HTTP/1.1 200 "));
    const auto requests = server.requests();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].method, "POST");
    EXPECT_EQ(requests[0].target, "/translate?x=1");
    EXPECT_EQ(requests[0].headers.at("x-name"), "two words");
    EXPECT_EQ(requests[0].body, "hello");
}

TEST(HttpServer, oneConnection_carriesSeveralRequests) {
    HttpServer server(answerOk);
    Caller caller(server);
    for (auto count = 0; count < 3; ++count) {
        caller.say("GET / HTTP/1.1\r\n\r\n");
        EXPECT_THAT(caller.hearUntil("true}"), HasSubstr("Content-Length: 11"));
    }
    EXPECT_TRUE(server.waitForRequests(3));
    EXPECT_EQ(server.openConnections(), 1u);
}

TEST(HttpServer, aHandlerThatSaysNothing_closesTheConnection) {
    HttpServer server([](HttpExchange&) {});
    Caller caller(server);
    caller.say("GET / HTTP/1.1\r\n\r\n");
    EXPECT_EQ(caller.hearAll(), "");
}

TEST(HttpServer, aChunkedAnswer_comesPieceByPiece) {
    HttpServer server([](HttpExchange& exchange) {
        exchange.beginChunked(200, "text/event-stream");
        exchange.sendChunk("data: one\n\n");
        if (exchange.waitForRelease()) {
            exchange.sendChunk("data: two\n\n");
            exchange.endChunked();
        }
    });
    Caller caller(server);
    caller.say("GET / HTTP/1.1\r\n\r\n");
    EXPECT_THAT(caller.hearUntil("one\n\n\r\n"), HasSubstr("\r\n\r\nb\r\ndata: one"));
    server.release();
    EXPECT_THAT(caller.hearUntil("0\r\n\r\n"), HasSubstr("data: two"));
}

TEST(HttpServer, rawBytes_endWithTheConnection) {
    HttpServer server([](HttpExchange& exchange) { exchange.sendRaw("HTTP/1.1 200 OK\r\nContent-Le"); });
    Caller caller(server);
    caller.say("GET / HTTP/1.1\r\n\r\n");
    EXPECT_EQ(caller.hearAll(), "HTTP/1.1 200 OK\r\nContent-Le");
}

TEST(HttpServer, aDrip_goesOnUntilTheCallerLeaves) {
    HttpServer server([](HttpExchange& exchange) { exchange.drip(std::chrono::milliseconds(1)); });
    {
        Caller caller(server);
        caller.say("GET / HTTP/1.1\r\n\r\n");
        EXPECT_THAT(caller.hearUntil("\r\n\r\n   "), HasSubstr("Content-Length: 1000000"));
    }
}

TEST(HttpServer, aStall_holdsUpNoOtherAndEndsWithTheServer) {
    HttpServer server([](HttpExchange& exchange) {
        exchange.request().target == "/slow" ? exchange.stall() : answerOk(exchange);
    });
    Caller slow(server);
    slow.say("GET /slow HTTP/1.1\r\n\r\n");
    EXPECT_TRUE(server.waitForRequests(1));
    Caller quick(server);
    quick.say("GET / HTTP/1.1\r\n\r\n");
    EXPECT_THAT(quick.hearUntil("true}"), HasSubstr("200"));
}

} // namespace
} // namespace tovik::test
