// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Http/HttpMessages.h"

#include <curl/curl.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// One connection to a server, or the use of one that is kept, and one request on it. Begins at once and
/// hangs up with the object. For the thread that runs the carrier.
class HttpAttempt {
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    /// isReady: none, or asked when there is a connection and nothing has been sent; false hangs up. Only
    /// then is more looked at of the request than its address; it must be a form. Request and settings
    /// outlive the attempt.
    HttpAttempt(const HttpRequest& request, const HttpSettings& settings, CURLM* carrier,
                std::function<bool(int socket)> isReady);
    ~HttpAttempt();
    HttpAttempt(const HttpAttempt&) = delete;
    HttpAttempt& operator=(const HttpAttempt&) = delete;

    [[nodiscard]] bool isOf(const CURL* handle) const { return handle_ == handle; }
    /// What came of it, once libcurl has told how it ended. Once only.
    [[nodiscard]] HttpOutcome outcome(CURLcode code);

    /// When the step that is under way has taken too long.
    [[nodiscard]] TimePoint deadline() const;
    /// The limits of connecting count from now on.
    void startClock() { stepBegan_ = std::chrono::steady_clock::now(); }
    /// What it is when it has.
    [[nodiscard]] HttpFailure timeOut() const;
    /// Where the part of the file that came began.
    [[nodiscard]] std::uint64_t offset() const { return offset_; }

private:
    enum class Step { connecting, sending, waiting, receiving };

    void setOptions();
    void setCallbacks();
    void setHeaders();
    void setBody();
    void fillForm();
    void enter(Step step);

    // libcurl calls these.
    int connected(int localPort);
    int moved(std::uint64_t received, std::uint64_t total, std::uint64_t sent, std::uint64_t toSend);
    bool takeHeader(std::string_view line);
    bool takeBody(std::string_view bytes);
    static int remember(void* attempt, curl_socket_t socket, curlsocktype);

    bool beginFile();
    bool refuse(HttpFailure::Kind kind, const std::string& description);
    [[nodiscard]] HttpFailure failureOf(CURLcode code) const;

    const HttpRequest& request_;
    const HttpSettings& settings_;
    CURLM* const carrier_;
    const std::function<bool(int)> isReady_;
    CURL* const handle_;
    curl_mime* form_ = nullptr;
    bool formIsFilled_ = false;
    curl_slist* headers_ = nullptr;
    std::array<char, CURL_ERROR_SIZE> trouble_{};
    std::vector<int> sockets_;
    Step step_ = Step::connecting;
    TimePoint stepBegan_;
    TimePoint sentAt_;
    TimePoint lastMove_;
    std::uint64_t lastCount_ = 0;
    HttpResponse response_;
    bool headIsRead_ = false;
    /// Of what has come.
    std::uint64_t size_ = 0;
    std::optional<HttpFailure> refusal_;
    std::optional<PartialFile> file_;
    std::uint64_t offset_ = 0;
    bool fileIsOpen_ = false;
};

} // namespace tovik
