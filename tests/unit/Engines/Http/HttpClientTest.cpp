// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Http/WebAddress.h"
#include "unit/Engines/Http/HttpFixture.h"

#include <gmock/gmock.h>
#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <optional>

namespace tovik::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using Kind = HttpFailure::Kind;

// ---------------------------------------------------------------------------- what a server says

/// What is made of bytes, whole or one by one; the connection is closed afterwards.
struct Reading {
    std::string name;
    std::string bytes;
    /// 0: there is no response.
    int status = 200;
    std::string body;

    friend void PrintTo(const Reading& row, std::ostream* out) { *out << row.name; }
};

class HttpReading : public HttpFixture, public testing::WithParamInterface<Reading> {};

TEST_P(HttpReading, isTheSameWholeAndByteByByte) {
    const auto& row = GetParam();
    for (const std::size_t atOnce : {row.bytes.size() + 1, std::size_t{1}}) {
        server_.setHandler([&row, atOnce](HttpExchange& exchange) {
            for (std::size_t at = 0; at < row.bytes.size(); at += atOnce) {
                exchange.sendRaw(std::string_view(row.bytes).substr(at, atOnce));
            }
        });
        const auto outcome = ask(request());
        const auto* const response = responseOf(outcome);
        ASSERT_EQ(response != nullptr, row.status != 0) << textOf(outcome);
        if (response != nullptr) {
            EXPECT_EQ(response->status, row.status);
            EXPECT_EQ(response->body, row.body);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, HttpReading,
    testing::Values(
        Reading{"Counted", "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello", 200, "hello"},
        Reading{"CountedEmpty", "HTTP/1.1 200 OK\r\ncontent-length: 0\r\n\r\n", 200, ""},
        Reading{"UntilTheEnd", "HTTP/1.0 500 Oops\r\n\r\nhello", 500, "hello"},
        Reading{"Chunked",
                "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3;x=y\r\nhel\r\n2\r\nlo\r\n0\r\n\r\n",
                200, "hello"},
        Reading{"ChunkedWithTrailer",
                "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1\r\nx\r\n0\r\nA: b\r\n\r\n", 200, "x"},
        Reading{"Provisional", "HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\nx",
                200, "x"},
        Reading{"WithoutBody", "HTTP/1.1 204 No Content\r\n\r\n", 204, ""},
        Reading{"CutHead", "HTTP/1.1 200 OK\r\nContent-Le", 0, ""},
        Reading{"CutBody", "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhel", 0, ""},
        Reading{"CutChunk", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhel", 0, ""},
        Reading{"NoHttp", "220 smtp.example ESMTP\r\n\r\n", 0, ""},
        Reading{"NoStatus", "HTTP/1.1 abc OK\r\n\r\n", 0, ""},
        Reading{"NoHeader", "HTTP/1.1 200 OK\r\nnonsense\r\n\r\n", 0, ""},
        Reading{"NegativeLength", "HTTP/1.1 200 OK\r\nContent-Length: -1\r\n\r\n", 0, ""},
        Reading{"HugeLength", "HTTP/1.1 200 OK\r\nContent-Length: 99999999999999999999\r\n\r\n", 0, ""},
        Reading{"HugeChunk", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nffffffffffffffff\r\n", 0,
                ""},
        Reading{"Nothing", "", 0, ""}),
    [](const auto& row) { return row.param.name; });

class HttpClientTest : public HttpFixture {};

TEST_F(HttpClientTest, whenTheAnswerIsLongerThanItMayBe_givesUp) {
    const std::string starts[] = {
        "HTTP/1.1 200 OK\r\n\r\n",
        "HTTP/1.1 200 OK\r\nContent-Length: 1000000000\r\n\r\n",
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3b9aca00\r\n",
        "HTTP/1.1 200 OK\r\nX: ",
    };
    for (const auto& start : starts) {
        std::atomic<std::size_t> sent{0};
        server_.setHandler([&](HttpExchange& exchange) {
            exchange.sendRaw(start);
            while (exchange.sendRaw(std::string(1 << 16, 'x'))) {
                sent += 1 << 16;
            }
        });
        const auto outcome = ask(request());
        EXPECT_EQ(responseOf(outcome), nullptr) << start;
        EXPECT_LT(sent, 100U << 20) << start;
    }
}

TEST_F(HttpClientTest, whenTheAnswerHasEndlessHeaders_givesUp) {
    server_.setHandler([](HttpExchange& exchange) {
        exchange.sendRaw("HTTP/1.1 200 OK\r\n");
        while (exchange.sendRaw("X-More: " + std::string(1000, 'x') + "\r\n")) {
        }
    });
    EXPECT_EQ(responseOf(ask(request())), nullptr);
}

TEST(HttpResponse, asJson_isDiscardedWhereItIsNoneOrNestedWithoutEnd) {
    HttpResponse response;
    response.body = R"({"text": "a [ b { \" c", "deep": [[[1]]]})";
    EXPECT_EQ(response.json()["text"], "a [ b { \" c");
    for (const auto& body :
         {std::string("nonsense"), std::string(), std::string(8 << 20, '['),
          std::string(100, '[') + std::string(100, ']'), std::string("{\"a\": \"\xFF\"}")}) {
        response.body = body;
        EXPECT_TRUE(response.json().is_discarded()) << body.substr(0, 20);
    }
}

// ----------------------------------------------------------------------------- what is asked for

TEST_F(HttpClientTest, aRequest_isSentAsItIs) {
    auto question = request();
    question.key = "secret";
    question.headers = {"Accept: application/json"};
    question.body = R"({"a": 1})";
    question.contentType = "application/json";
    EXPECT_EQ(textOf(ask(question)), "hi");
    const auto asked = server_.requests().front();
    EXPECT_EQ(asked.method + " " + asked.target, "POST /thing");
    EXPECT_EQ(asked.headers.at("authorization"), "Bearer secret");
    EXPECT_EQ(asked.headers.at("content-type"), "application/json");
    EXPECT_EQ(asked.headers.at("accept"), "application/json");
    EXPECT_EQ(asked.headers.count("expect"), 0U);
    EXPECT_EQ(asked.body, question.body);
}

TEST_F(HttpClientTest, aForm_isSentWithItsLength) {
    auto question = request();
    question.form = {{"model", "whisper", {}, {}}, {"file", std::string("RI\0F", 4), "a.wav", "audio/wav"}};
    EXPECT_EQ(textOf(ask(question)), "hi");
    const auto asked = server_.requests().front();
    EXPECT_THAT(asked.headers.at("content-type"), HasSubstr("multipart/form-data; boundary="));
    EXPECT_EQ(asked.headers.at("content-length"), std::to_string(asked.body.size()));
    EXPECT_THAT(asked.body, HasSubstr("name=\"model\"\r\n\r\nwhisper\r\n"));
    EXPECT_THAT(asked.body, HasSubstr("filename=\"a.wav\"\r\nContent-Type: audio/wav\r\n\r\nRI" +
                                      std::string("\0F\r\n", 4)));
}

TEST_F(HttpClientTest, requestsOneAfterTheOther_shareAConnection) {
    EXPECT_EQ(textOf(ask(request())), "hi");
    EXPECT_EQ(textOf(ask(request())), "hi");
    EXPECT_EQ(server_.openConnections(), 1U);
}

TEST_F(HttpClientTest, requestsAtTheSameTime_areEachAnswered) {
    server_.setHandler([](HttpExchange& exchange) {
        if (exchange.waitForRelease()) {
            exchange.answer(200, "text/plain", exchange.request().target);
        }
    });
    std::atomic<int> answers{0};
    std::vector<Subscription> transfers;
    for (int i = 0; i < 5; ++i) {
        transfers.push_back(client_.send(request(server_.url() + "/" + std::to_string(i)),
                                         [&, i](const HttpOutcome& outcome) {
                                             EXPECT_EQ(textOf(outcome), "/" + std::to_string(i));
                                             ++answers;
                                         }));
    }
    ASSERT_TRUE(server_.waitForRequests(5));
    for (int i = 0; i < 5; ++i) {
        server_.release();
    }
    EXPECT_TRUE(comesTrue([&] { return answers == 5; }));
}

TEST_F(HttpClientTest, redirections_areFollowedOnlyOnRequestAndNeverWithAKey) {
    server_.setHandler([](HttpExchange& exchange) {
        if (exchange.request().target == "/thing") {
            exchange.answer(302, "text/plain", "", {{"Location", "/elsewhere"}});
        } else {
            exchange.answer(200, "text/plain", "found");
        }
    });
    auto question = request();
    auto outcome = ask(question);
    ASSERT_NE(responseOf(outcome), nullptr);
    EXPECT_EQ(responseOf(outcome)->status, 302);
    question.followsRedirections = true;
    EXPECT_EQ(textOf(ask(question)), "found");
    question.key = "secret";
    outcome = ask(question);
    ASSERT_NE(responseOf(outcome), nullptr);
    EXPECT_EQ(responseOf(outcome)->status, 302);
    EXPECT_THAT(server_.requests(), SizeIs(4));
}

TEST_F(HttpClientTest, endlessRedirections_areAFailure) {
    server_.setHandler([](HttpExchange& exchange) {
        exchange.answer(302, "text/plain", "", {{"Location", "/thing"}});
    });
    auto question = request();
    question.followsRedirections = true;
    EXPECT_EQ(responseOf(ask(question)), nullptr);
    EXPECT_LT(server_.requests().size(), 10U);
}

// ------------------------------------------------------------------------------ another attempt

TEST_F(HttpClientTest, whenTheConnectionDiesUnanswered_isAskedOnceMore) {
    server_.setHandler([](HttpExchange&) {});
    const auto outcome = ask(request());
    EXPECT_THAT(textOf(outcome), HasSubstr("closed the connection without an answer"));
    EXPECT_EQ(std::get<HttpFailure>(outcome).kind, Kind::diedUnanswered);
    EXPECT_THAT(server_.requests(), SizeIs(2));
}

TEST_F(HttpClientTest, aBusyServer_isAskedAgainAfterThePauseThatItWants) {
    std::atomic<int> attempts{0};
    server_.setHandler([&](HttpExchange& exchange) {
        if (++attempts < 3) {
            exchange.answer(attempts == 1 ? 429 : 503, "text/plain", "", {{"Retry-After", "0.3"}});
        } else {
            exchange.answer(200, "text/plain", "hi");
        }
    });
    EXPECT_EQ(textOf(ask(request())), "hi");
}

TEST_F(HttpClientTest, aBusyServerThatNamesNoPause_isNotAskedOverAndOver) {
    server_.setHandler([](HttpExchange& exchange) {
        exchange.answer(503, "text/plain", "", {{"Retry-After", "0"}});
    });
    auto question = request();
    question.limits.total = Seconds(1);
    const auto outcome = ask(question);
    ASSERT_NE(responseOf(outcome), nullptr);
    EXPECT_EQ(responseOf(outcome)->status, 503);
    EXPECT_LT(server_.requests().size(), 6U);
}

TEST_F(HttpClientTest, aServerThatIsBeingStarted_isWaitedFor) {
    int port = 0;
    {
        const HttpServer gone([](HttpExchange&) {});
        port = gone.port();
    }
    auto question = request("http://127.0.0.1:" + std::to_string(port));
    question.limits.total = Seconds(0.5);
    EXPECT_THAT(textOf(ask(question)), HasSubstr("cannot be reached"));
    question.isStarting = true;
    const auto before = std::chrono::steady_clock::now();
    EXPECT_THAT(textOf(ask(question)), HasSubstr("cannot be reached"));
    EXPECT_GT(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(250));
}

TEST_F(HttpClientTest, aServerThatIsBeingStartedAndLoadsItsModel_isWaitedFor) {
    std::atomic<int> questions{0};
    server_.setHandler([&](HttpExchange& exchange) {
        const bool isLoading = ++questions < 3;
        exchange.answer(isLoading ? 503 : 200, "text/plain", isLoading ? "loading" : "ready");
    });
    auto question = request();
    question.isStarting = true;
    EXPECT_EQ(textOf(ask(question)), "ready");
    EXPECT_EQ(questions, 3);
}

// --------------------------------------------------------------------------------- time, and ends

TEST_F(HttpClientTest, aServerThatDoesNotAnswer_isGivenUp) {
    server_.setHandler([](HttpExchange& exchange) { exchange.stall(); });
    auto question = request();
    question.limits.firstByte = Seconds(0.1);
    const auto outcome = ask(question);
    EXPECT_EQ(textOf(outcome), "does not answer");
    EXPECT_EQ(std::get<HttpFailure>(outcome).kind, Kind::timedOut);
    EXPECT_TRUE(comesTrue([this] { return server_.openConnections() == 0; }));
}

TEST_F(HttpClientTest, anAnswerThatDoesNotEnd_isGivenUp) {
    server_.setHandler([](HttpExchange& exchange) { exchange.drip(std::chrono::milliseconds(10)); });
    auto question = request();
    question.limits.answer = Seconds(2);
    EXPECT_EQ(textOf(ask(question)), "does not finish its answer in time");
}

TEST_F(HttpClientTest, whenItsTokenIsDropped_hangsUpAndSaysNothing) {
    server_.setHandler([](HttpExchange& exchange) { exchange.stall(); });
    std::atomic<int> answers{0};
    {
        const auto transfer = client_.send(request(), [&](const HttpOutcome&) { ++answers; });
        ASSERT_TRUE(server_.waitForRequests(1));
    }
    EXPECT_TRUE(comesTrue([this] { return server_.openConnections() == 0; }));
    EXPECT_EQ(answers, 0);
}

TEST_F(HttpClientTest, whenTheClientEnds_hangsUpAndSaysNothing) {
    // What is freed is overwritten, so that it shows when a transfer is looked at after its end.
    ::mallopt(M_PERTURB, 0xa5);
    server_.setHandler([](HttpExchange& exchange) { exchange.stall(); });
    std::atomic<int> answers{0};
    Subscription transfer;
    {
        HttpClient client;
        transfer = client.send(request(), [&](const HttpOutcome&) { ++answers; });
        ASSERT_TRUE(server_.waitForRequests(1));
    }
    ::mallopt(M_PERTURB, 0);
    EXPECT_TRUE(comesTrue([this] { return server_.openConnections() == 0; }));
    EXPECT_EQ(answers, 0);
}

// ---------------------------------------------------------------------------------------- proxies

/// A variable of the environment for as long as the object lives.
class Variable {
public:
    Variable(const char* name, const std::string& value) : name_(name) { ::setenv(name, value.c_str(), 1); }
    ~Variable() { ::unsetenv(name_); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const char* name_;
};

TEST_F(HttpClientTest, aProxyOfTheEnvironment_isUsedUnlessItIsRuledOut) {
    const Variable http("http_proxy", server_.url());
    EXPECT_EQ(textOf(ask(request("http://speech.invalid/v1"))), "hi");
    EXPECT_EQ(server_.requests().front().target, "http://speech.invalid/v1");
    const Variable exception("no_proxy", "speech.invalid");
    EXPECT_THAT(textOf(ask(request("http://speech.invalid/v1"))), HasSubstr("cannot be reached"));
    EXPECT_THAT(server_.requests(), SizeIs(1));
}

TEST_F(HttpClientTest, anEncryptedRequest_showsTheProxyNothingButTheServersName) {
    const Variable https("https_proxy", server_.url());
    server_.setHandler([](HttpExchange& exchange) { exchange.answer(403, "text/plain", "no"); });
    auto question = request("https://speech.invalid/v1");
    question.key = "secret";
    const auto outcome = ask(question);
    EXPECT_THAT(textOf(outcome), HasSubstr("cannot be reached"));
    ASSERT_THAT(server_.requests(), SizeIs(1));
    EXPECT_EQ(server_.requests().front().method + " " + server_.requests().front().target,
              "CONNECT speech.invalid:443");
    EXPECT_EQ(server_.requests().front().headers.count("authorization"), 0U);
}

TEST_F(HttpClientTest, aServerOnThisMachine_isAskedWithoutAProxy) {
    HttpServer proxy([](HttpExchange& exchange) { exchange.answer(200, "text/plain", "proxy"); });
    const Variable http("http_proxy", proxy.url());
    EXPECT_EQ(textOf(ask(request())), "hi");
    EXPECT_THAT(proxy.requests(), IsEmpty());
}

// -------------------------------------------------------------------------------------- addresses

TEST(WebAddress, anAddress_isTakenApart) {
    const auto address = WebAddress::parse("https://user@Speech.example:8443/a%20b/v1/?x=y#z");
    ASSERT_TRUE(address);
    EXPECT_EQ(address->origin(), "https://speech.example:8443");
    EXPECT_EQ(address->path, "/a%20b/v1");
    EXPECT_EQ(address->url("/models"), "https://speech.example:8443/models");
    EXPECT_EQ(WebAddress::parse("http://[::1]/")->url("/x"), "http://[::1]:80/x");
    EXPECT_EQ(WebAddress::parse("http://bücher.example")->host, "xn--bcher-kva.example");
}

TEST(WebAddress, whereNobodyOnTheWayCanRead_isSafeForKeys) {
    struct Row {
        bool isEncrypted;
        const char* host;
        bool isSafe;
    };
    const Row rows[] = {
        {true, "speech.example", true},
        {false, "speech.example", false},
        {false, "localhost", true},
        {false, "127.0.0.1", true},
        {false, "127.1.2.3", true},
        {false, "::1", true},
        {false, "192.168.1.2", false},
        {false, "0.0.0.0", false},
        {false, "::", false},
        {false, "128.0.0.1", false},
        {false, "127.0.0.1.example", false},
        {false, "localhost.example", false},
        {false, "", false},
    };
    for (const auto& row : rows) {
        const WebAddress address{row.isEncrypted, row.host, 80, {}};
        EXPECT_EQ(address.isSafeForKeys(), row.isSafe) << row.isEncrypted << row.host;
        EXPECT_EQ(address.isThisMachine(), row.isSafe && !row.isEncrypted) << row.host;
    }
}

} // namespace
} // namespace tovik::test
