// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Http/HttpAttempt.h"
#include "Platform/Subscription.h"

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tovik {

// How this program talks with web servers, on libcurl. Certificates are verified; the usual variables of the
// environment (https_proxy, no_proxy and so on) name proxies, save for servers on this machine; no cookies
// are kept.

/// One request on its way: its attempts, one after the other, until there is an outcome. A request is
/// repeated once when its connection died before a byte came back, after the pause that a busy server asks
/// for (Retry-After), and while its server is being started. For the thread of the HttpLoop that carries it.
class HttpTransfer {
public:
    using TimePoint = HttpAttempt::TimePoint;
    /// Asked when there is a connection and nothing has been sent: the request, or nothing to hang up.
    using RequestSource = std::function<std::optional<HttpRequest>(int socket)>;

    /// The limits count from now on.
    HttpTransfer(HttpRequest request, HttpSettings settings);
    /// Connects to the server of a request that is not known yet. The source may take its time; the limits
    /// count from when it has given one. It must be a form.
    HttpTransfer(const std::string& url, HttpSettings settings, RequestSource source);
    HttpTransfer(const HttpTransfer&) = delete;
    HttpTransfer& operator=(const HttpTransfer&) = delete;

    /// Gives the request before the source was asked.
    void start(HttpRequest request);
    /// Whether there is a request yet.
    [[nodiscard]] bool isStarted() const { return started_.has_value(); }
    /// Nothing until it is over.
    [[nodiscard]] const std::optional<HttpOutcome>& outcome() const { return outcome_; }

private:
    friend class HttpLoop;

    // The loop calls these.
    void beginWhenDue(CURLM* carrier);
    void endWhenLate();
    [[nodiscard]] TimePoint nextLook() const;
    [[nodiscard]] bool isUnderWayOn(const CURL* handle) const { return attempt_ && attempt_->isOf(handle); }
    void attemptEnded(CURLcode code);
    void hangUp() { attempt_.reset(); }

    bool askSource(int socket);
    /// Whether there is to be another attempt.
    [[nodiscard]] bool isWorthAnother(const HttpOutcome& outcome, Seconds& pause);
    [[nodiscard]] bool hasTimeFor(Seconds pause) const;

    HttpRequest request_;
    const HttpSettings settings_;
    const RequestSource source_;
    std::optional<TimePoint> started_;
    std::optional<HttpAttempt> attempt_;
    /// Of the next attempt, while there is none.
    TimePoint nextAttempt_;
    bool wasRepeated_ = false;
    std::optional<HttpOutcome> outcome_;
};

/// Carries transfers on one thread, on which SIGPIPE is then blocked. Connections are kept for a next
/// transfer to the same server.
class HttpLoop {
public:
    HttpLoop();
    ~HttpLoop();
    HttpLoop(const HttpLoop&) = delete;
    HttpLoop& operator=(const HttpLoop&) = delete;

    /// The transfer is carried until it has an outcome or is removed.
    void add(HttpTransfer& transfer) { transfers_.push_back(&transfer); }
    void remove(HttpTransfer& transfer);
    /// Lets things happen for so long at most. Comes back as soon as an attempt has ended.
    void step(Seconds atMost);
    /// Ends the step that is under way, or the next one. Any thread.
    void wake() { curl_multi_wakeup(multi_); }

private:
    /// Whether any has ended.
    bool endAttempts();

    CURLM* const multi_;
    std::vector<HttpTransfer*> transfers_;
};

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
