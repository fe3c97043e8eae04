// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Server/Upload.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

namespace tovik {

namespace {

constexpr int kTooManyRequests = 429;
constexpr int kUnavailable = 503;
/// How often a server that is just being started is tried.
constexpr Seconds kStartPause{0.2};
/// The slowest way to a server on which dictations are sent at all: 16 kB a second is half of what sound of
/// 16 kHz comes in at.
constexpr double kSlowestBytes = 16000;

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
    return Seconds(seconds);
}

} // namespace

Upload::Upload(const ServerSettings& settings, Seconds oldestConnection) : settings_(settings) {
    again_.setSingleShot(true);
    QObject::connect(&again_, &QTimer::timeout, &again_, [this] { attempt(); });
    renew_.setInterval(std::chrono::duration_cast<std::chrono::milliseconds>(oldestConnection));
    QObject::connect(&renew_, &QTimer::timeout, &renew_, [this] { connect(); });
}

void Upload::open() {
    connect();
    renew_.start();
}

void Upload::connect() {
    connection_ = std::make_unique<HttpConnection>(settings_.address);
    connection_->open();
}

void Upload::send(std::string request, std::function<void(const Outcome&)> callback) {
    request_ = std::move(request);
    callback_ = std::move(callback);
    renew_.stop();
    patience_ = settings_.wholeTimeout + Seconds(static_cast<double>(request_.size()) / kSlowestBytes);
    sinceSend_.start();
    attempt();
}

Seconds Upload::timeLeft() const {
    return patience_ - Seconds(static_cast<double>(sinceSend_.elapsed()) / 1000);
}

void Upload::attempt() {
    // Servers close a connection on which nothing comes for a few seconds, as while somebody speaks.
    if (!connection_ || !connection_->isAlive()) {
        connect();
    }
    connection_->send(request_,
                      {.connect = settings_.connectTimeout,
                       .firstByte = settings_.firstByteTimeout,
                       .sending = timeLeft(),
                       .whole = std::min(settings_.wholeTimeout, timeLeft())},
                      [this](const Outcome& outcome) { answered(outcome); });
}

void Upload::attemptAfter(Seconds pause) {
    // It is the one that reports this, so it goes a little later.
    QMetaObject::invokeMethod(
        &again_, [old = std::shared_ptr<HttpConnection>(std::move(connection_))] {}, Qt::QueuedConnection);
    again_.start(std::chrono::duration_cast<std::chrono::milliseconds>(pause));
}

void Upload::answered(const Outcome& outcome) {
    if (const auto* response = std::get_if<HttpResponse>(&outcome)) {
        if (const auto pause = retryAfter(*response); pause && hasTimeFor(*pause)) {
            attemptAfter(*pause);
            return;
        }
    } else {
        const auto kind = std::get<HttpFailure>(outcome).kind;
        if (kind == HttpFailure::Kind::diedUnanswered && hasTimeFor(Seconds(0)) &&
            !std::exchange(wasRepeated_, true)) {
            attemptAfter(Seconds(0));
            return;
        }
        const bool isStarting = kind == HttpFailure::Kind::notConnected && !settings_.command.empty();
        if (isStarting && hasTimeFor(kStartPause)) {
            attemptAfter(kStartPause);
            return;
        }
    }
    std::exchange(callback_, nullptr)(outcome);
}

} // namespace tovik
