// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Http/HttpClient.h"
#include "support/ComesTrue.h"
#include "support/HttpServer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <utility>

namespace tovik::test {

inline const HttpResponse* responseOf(const HttpOutcome& outcome) {
    return std::get_if<HttpResponse>(&outcome);
}
/// The body of the answer, or what went wrong.
inline std::string textOf(const HttpOutcome& outcome) {
    const auto* const response = responseOf(outcome);
    return response != nullptr ? response->body : std::get<HttpFailure>(outcome).description;
}

/// A server, and a client that asks it.
class HttpFixture : public testing::Test {
protected:
    /// Limits that a busy machine keeps.
    [[nodiscard]] static HttpRequest request(const std::string& url) {
        HttpRequest request;
        request.url = url;
        request.limits = {.connect = Seconds(20),
                          .stall = Seconds(20),
                          .firstByte = Seconds(20),
                          .answer = Seconds(20),
                          .total = Seconds(20)};
        return request;
    }
    [[nodiscard]] HttpRequest request() const { return request(server_.url() + "/thing"); }

    HttpOutcome ask(HttpRequest request) {
        const auto answer = std::make_shared<std::promise<HttpOutcome>>();
        auto future = answer->get_future();
        const auto transfer = client_.send(
            std::move(request), [answer](const HttpOutcome& outcome) { answer->set_value(outcome); });
        if (future.wait_for(std::chrono::seconds(60)) != std::future_status::ready) {
            return HttpFailure{HttpFailure::Kind::timedOut, "nothing at all"};
        }
        return future.get();
    }

    HttpServer server_{[](HttpExchange& exchange) { exchange.answer(200, "text/plain", "hi"); }};
    HttpSettings settings_;
    HttpClient client_{settings_};
};

} // namespace tovik::test
