// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Http/HttpClient.h"

#include <poll.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

namespace tovik {

namespace {

using std::chrono::milliseconds;

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
