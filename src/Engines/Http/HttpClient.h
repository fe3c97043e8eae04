// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Http/HttpMessages.h"
#include "Engines/Http/HttpTransfer.h"
#include "Platform/Subscription.h"

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tovik {

// How this program talks with web servers, on libcurl. Certificates are verified; the usual variables of the
// environment (https_proxy, no_proxy and so on) name proxies, save for servers on this machine; no cookies
// are kept.

/// Asks web servers, on a thread of its own that begins with the first question. For one thread.
class HttpClient {
public:
    /// On the client's thread. Must not wait for anything.
    using Callback = std::function<void(const HttpOutcome&)>;

    explicit HttpClient(HttpSettings settings = {});
    /// Ends what is under way; nothing is called back any more.
    ~HttpClient();
    HttpClient(const HttpClient&) = delete;
    HttpClient& operator=(const HttpClient&) = delete;

    /// Calls back once. Dropping the token hangs up; a call back that is under way at that moment goes on.
    [[nodiscard]] Subscription send(HttpRequest request, Callback callback);

private:
    class Worker;

    const HttpSettings settings_;
    /// Most users name no server, and every launch would pay for it.
    std::shared_ptr<Worker> worker_;
};

/// One form that is sent on a connection that is opened before the form is known, so that it leaves without
/// any delay. The connection is made anew when the server hangs up, and now and then.
class HttpUpload {
public:
    /// Waits for the request for so long at most; nothing when it is not there yet.
    using Source = std::function<std::optional<HttpRequest>(std::chrono::milliseconds atMost)>;

    /// Firewalls on the way silently forget a connection on which nothing comes for half a minute or more.
    static constexpr Seconds oldest{20};

    explicit HttpUpload(HttpSettings settings = {}, Seconds oldestConnection = oldest);
    HttpUpload(const HttpUpload&) = delete;
    HttpUpload& operator=(const HttpUpload&) = delete;

    /// Does it all on this thread; once only. url: of the request that the source will give.
    [[nodiscard]] HttpOutcome perform(const std::string& url, const Source& source);
    /// Ends it within a tenth of a second, with an outcome of that kind. Any thread.
    void cancel();

private:
    /// Connects and waits for the request; it may have been sent already when this comes back.
    void waitForRequest(const std::string& url, const Source& source);
    std::optional<HttpRequest> waitOnConnection(int socket, const Source& source);
    [[nodiscard]] bool isOld() const;
    [[nodiscard]] bool isOver() const { return isCancelled_ || request_ || transfer_->isStarted(); }

    const HttpSettings settings_;
    const Seconds oldestConnection_;
    HttpLoop loop_;
    std::atomic<bool> isCancelled_{false};
    std::unique_ptr<HttpTransfer> transfer_;
    std::chrono::steady_clock::time_point connecting_;
    /// One that came while there was no connection to send it on.
    std::optional<HttpRequest> request_;
};

} // namespace tovik
