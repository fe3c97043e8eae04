// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tovik {

struct HttpResponse {
    int status = 0;
    /// Names in lower case.
    std::map<std::string, std::string> headers;
    std::string body;

    [[nodiscard]] std::string header(const std::string& name) const;
};

/// Reads one HTTP/1.1 response from bytes as they come in. Nothing that a server sends can make it grow
/// beyond mostBytes.
class HttpResponseReader {
public:
    static constexpr std::size_t mostBytes = 4 << 20;

    enum class State { reading, complete, malformed };

    State take(std::string_view bytes);
    /// The connection was closed: for some responses that is the end of the body.
    State end();

    /// Only when complete.
    [[nodiscard]] const HttpResponse& response() const { return response_; }

private:
    enum class Body { none, counted, chunked, untilEnd };

    State read();
    State readHead();
    State readBody();
    State readChunks();
    [[nodiscard]] bool readHeaderLine(std::string_view line);
    [[nodiscard]] bool chooseBody();

    State state_ = State::reading;
    std::string buffer_;
    HttpResponse response_;
    bool headIsRead_ = false;
    Body body_ = Body::none;
    std::size_t left_ = 0;
    bool inTrailer_ = false;
};

} // namespace tovik
