// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Http/HttpClient.h"

#include <poll.h>
#include <signal.h>

#include <algorithm>
#include <charconv>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

namespace tovik {

namespace {

using Kind = HttpFailure::Kind;
using std::chrono::milliseconds;
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

/// How often whoever waits for a request looks whether it is still wanted.
constexpr milliseconds kLookUp{100};
/// The same while a connection is being made, which goes on only in between.
constexpr Seconds kConnectStep{0.01};

/// Also when bytes of the server wait in front of its hanging up, as those of TLS do.
bool hasHungUp(int socket) {
    pollfd watched{socket, POLLRDHUP, 0};
    return socket < 0 || (::poll(&watched, 1, 0) > 0 && watched.revents != 0);
}

} // namespace

// -------------------------------------------------------------------------------- one transfer

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

// ------------------------------------------------------------------------------------ the client

class HttpClient::Worker {
public:
    explicit Worker(HttpSettings settings) : settings_(std::move(settings)) {}
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;
    ~Worker() = default;

    int add(HttpRequest request, Callback callback) {
        const std::lock_guard lock(mutex_);
        const auto id = ++lastId_;
        jobs_.emplace(
            id, Job{std::make_unique<HttpTransfer>(std::move(request), settings_), std::move(callback)});
        if (!thread_.joinable()) {
            thread_ = std::thread([this] { run(); });
        }
        loop_.wake();
        return id;
    }

    void drop(int id) {
        const std::lock_guard lock(mutex_);
        if (const auto found = jobs_.find(id); found != jobs_.end()) {
            found->second.isDropped = true;
            loop_.wake();
        }
    }

    void end() {
        {
            const std::lock_guard lock(mutex_);
            isEnding_ = true;
        }
        loop_.wake();
        if (thread_.joinable()) {
            thread_.join();
        }
    }

private:
    struct Job {
        std::unique_ptr<HttpTransfer> transfer;
        Callback callback;
        bool isCarried = false;
        bool isDropped = false;
    };

    void run() {
        constexpr Seconds kLong{60};
        while (takeStock()) {
            loop_.step(kLong);
        }
        for (auto& [id, job] : jobs_) {
            loop_.remove(*job.transfer);
        }
        jobs_.clear();
    }

    /// What is new is carried, what is over is told. False when it is time to end.
    bool takeStock() {
        std::vector<Job> over;
        {
            const std::lock_guard lock(mutex_);
            for (auto job = jobs_.begin(); job != jobs_.end();) {
                auto& [transfer, callback, isCarried, isDropped] = job->second;
                if (isDropped || transfer->outcome()) {
                    loop_.remove(*transfer);
                    over.push_back(std::move(job->second));
                    job = jobs_.erase(job);
                    continue;
                }
                if (!std::exchange(isCarried, true)) {
                    loop_.add(*transfer);
                }
                ++job;
            }
            if (isEnding_) {
                return false;
            }
        }
        for (const auto& job : over) {
            if (!job.isDropped) {
                job.callback(*job.transfer->outcome());
            }
        }
        return true;
    }

    const HttpSettings settings_;
    HttpLoop loop_;
    std::mutex mutex_;
    std::map<int, Job> jobs_;
    int lastId_ = 0;
    bool isEnding_ = false;
    std::thread thread_;
};

HttpClient::HttpClient(HttpSettings settings) : settings_(std::move(settings)) {}

HttpClient::~HttpClient() {
    if (worker_) {
        worker_->end();
    }
}

Subscription HttpClient::send(HttpRequest request, Callback callback) {
    if (!worker_) {
        worker_ = std::make_shared<Worker>(settings_);
    }
    const auto id = worker_->add(std::move(request), std::move(callback));
    return Subscription([worker = std::weak_ptr(worker_), id] {
        if (const auto still = worker.lock()) {
            still->drop(id);
        }
    });
}

// ------------------------------------------------------------------------------------ the upload

HttpUpload::HttpUpload(HttpSettings settings, Seconds oldestConnection)
    : settings_(std::move(settings)),
      oldestConnection_(oldestConnection) {}

void HttpUpload::cancel() {
    isCancelled_ = true;
    loop_.wake();
}

HttpOutcome HttpUpload::perform(const std::string& url, const Source& source) {
    do {
        waitForRequest(url, source);
    } while (!isOver());
    if (request_) {
        loop_.remove(*transfer_);
        transfer_ = std::make_unique<HttpTransfer>(std::move(*request_), settings_);
        loop_.add(*transfer_);
    }
    while (!transfer_->outcome() && !isCancelled_) {
        loop_.step(kLookUp);
    }
    loop_.remove(*transfer_);
    return isCancelled_ ? HttpFailure{HttpFailure::Kind::cancelled, "was not waited for"}
                        : *transfer_->outcome();
}

void HttpUpload::waitForRequest(const std::string& url, const Source& source) {
    connecting_ = std::chrono::steady_clock::now();
    if (transfer_) {
        loop_.remove(*transfer_);
    }
    transfer_ = std::make_unique<HttpTransfer>(
        url, settings_, [this, &source](int socket) { return waitOnConnection(socket, source); });
    loop_.add(*transfer_);
    while (!isOver() && !transfer_->outcome()) {
        loop_.step(kConnectStep);
        if (!isOver() && !transfer_->outcome()) {
            if (auto request = source(milliseconds(0))) {
                transfer_->start(std::move(*request));
            }
        }
    }
    // There is no server, or it has hung up: another attempt can wait, the request comes first.
    while (!isOver() && !isOld()) {
        request_ = source(kLookUp);
    }
}

std::optional<HttpRequest> HttpUpload::waitOnConnection(int socket, const Source& source) {
    while (!isCancelled_ && !isOld() && !hasHungUp(socket)) {
        if (auto request = source(std::min(kLookUp, std::chrono::ceil<milliseconds>(oldestConnection_)))) {
            if (!hasHungUp(socket)) {
                return request;
            }
            request_ = std::move(request);
            break;
        }
    }
    return std::nullopt;
}

bool HttpUpload::isOld() const {
    return std::chrono::steady_clock::now() - connecting_ > oldestConnection_;
}

} // namespace tovik
