// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Http/HttpTransfer.h"

#include <signal.h>

#include <algorithm>
#include <charconv>
#include <utility>

namespace tovik {

namespace {

using Kind = HttpFailure::Kind;
using std::chrono::steady_clock;

constexpr int kRangeNotSatisfiable = 416;
constexpr int kTooManyRequests = 429;
constexpr int kUnavailable = 503;
/// How often a server that is just being started is tried.
constexpr Seconds kStartPause{0.2};
/// A busy server that names no pause is not asked again at once, over and over.
constexpr Seconds kShortestPause{0.25};

steady_clock::duration ticks(Seconds time) {
    return std::chrono::duration_cast<steady_clock::duration>(std::min(time, HttpLimits::unlimited));
}

/// The seconds that a busy server asks for. Dates are not looked at: no server of this kind sends them.
std::optional<Seconds> retryAfter(const HttpResponse& response) {
    const auto text = response.header("retry-after");
    double seconds = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    const bool isBusy = response.status == kTooManyRequests || response.status == kUnavailable;
    if (!isBusy || text.empty() || error != std::errc() || end != text.data() + text.size() ||
        !(seconds >= 0)) {
        return std::nullopt;
    }
    return std::max(Seconds(seconds), kShortestPause);
}

CURLM* newMulti() {
    static const auto isReady = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    return isReady ? curl_multi_init() : nullptr;
}

} // namespace

HttpTransfer::HttpTransfer(HttpRequest request, HttpSettings settings) : settings_(std::move(settings)) {
    start(std::move(request));
}

HttpTransfer::HttpTransfer(const std::string& url, HttpSettings settings, RequestSource source)
    : settings_(std::move(settings)),
      source_(std::move(source)) {
    request_.url = url;
}

void HttpTransfer::start(HttpRequest request) {
    request_ = std::move(request);
    started_ = steady_clock::now();
    if (attempt_) {
        attempt_->startClock();
    }
}

bool HttpTransfer::askSource(int socket) {
    if (!isStarted()) {
        if (auto request = source_(socket)) {
            start(std::move(*request));
        }
    }
    return isStarted();
}

void HttpTransfer::beginWhenDue(CURLM* carrier) {
    if (attempt_ || steady_clock::now() < nextAttempt_) {
        return;
    }
    std::function<bool(int)> isReady;
    if (source_) {
        isReady = [this](int socket) { return askSource(socket); };
    }
    attempt_.emplace(request_, settings_, carrier, std::move(isReady));
}

void HttpTransfer::endWhenLate() {
    if (attempt_ && steady_clock::now() >= nextLook()) {
        outcome_ = attempt_->timeOut();
        hangUp();
    }
}

HttpTransfer::TimePoint HttpTransfer::nextLook() const {
    if (!isStarted()) {
        return TimePoint::max();
    }
    return attempt_ ? std::min(attempt_->deadline(), *started_ + ticks(request_.limits.total)) : nextAttempt_;
}

void HttpTransfer::attemptEnded(CURLcode code) {
    auto outcome = attempt_->outcome(code);
    Seconds pause{0};
    if (isStarted() && isWorthAnother(outcome, pause)) {
        nextAttempt_ = steady_clock::now() + ticks(pause);
    } else {
        outcome_ = std::move(outcome);
    }
    hangUp();
}

bool HttpTransfer::isWorthAnother(const HttpOutcome& outcome, Seconds& pause) {
    if (const auto* response = std::get_if<HttpResponse>(&outcome)) {
        if (response->status == kRangeNotSatisfiable && attempt_->offset() > 0) {
            return true;
        }
        // Servers say so while they load their model.
        const bool isLoading = request_.isStarting && response->status == kUnavailable;
        pause = retryAfter(*response).value_or(isLoading ? kStartPause : HttpLimits::unlimited);
        return hasTimeFor(pause);
    }
    const auto kind = std::get<HttpFailure>(outcome).kind;
    if (kind == Kind::notConnected && request_.isStarting) {
        pause = kStartPause;
        return hasTimeFor(pause);
    }
    return kind == Kind::diedUnanswered && hasTimeFor(pause) && !std::exchange(wasRepeated_, true);
}

bool HttpTransfer::hasTimeFor(Seconds pause) const {
    return pause < HttpLimits::unlimited && started_ &&
           steady_clock::now() + ticks(pause) < *started_ + ticks(request_.limits.total);
}

// -------------------------------------------------------------------------------------- the loop

HttpLoop::HttpLoop() : multi_(newMulti()) {}

HttpLoop::~HttpLoop() {
    while (!transfers_.empty()) {
        remove(*transfers_.back());
    }
    curl_multi_cleanup(multi_);
}

void HttpLoop::remove(HttpTransfer& transfer) {
    std::erase(transfers_, &transfer);
    transfer.hangUp();
}

void HttpLoop::step(Seconds atMost) {
    // TLS writes to sockets that the other side may have closed.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    for (auto* const transfer : transfers_) {
        transfer->beginWhenDue(multi_);
    }
    int running = 0;
    curl_multi_perform(multi_, &running);
    bool hasEnded = endAttempts();
    const auto now = std::chrono::steady_clock::now();
    auto until = now + std::chrono::duration_cast<std::chrono::steady_clock::duration>(atMost);
    for (auto* const transfer : std::vector(transfers_)) {
        transfer->endWhenLate();
        if (transfer->outcome()) {
            remove(*transfer);
            hasEnded = true;
        } else {
            until = std::min(until, transfer->nextLook());
        }
    }
    if (!hasEnded && until > now) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - now).count();
        curl_multi_poll(multi_, nullptr, 0, static_cast<int>(left), nullptr);
    }
}

bool HttpLoop::endAttempts() {
    bool hasEnded = false;
    int left = 0;
    while (const auto* const message = curl_multi_info_read(multi_, &left)) {
        if (message->msg != CURLMSG_DONE) {
            continue;
        }
        const auto code = message->data.result;
        const auto ended =
            std::find_if(transfers_.begin(), transfers_.end(), [message](const HttpTransfer* transfer) {
                return transfer->isUnderWayOn(message->easy_handle);
            });
        (*ended)->attemptEnded(code);
        hasEnded = true;
    }
    return hasEnded;
}

} // namespace tovik
