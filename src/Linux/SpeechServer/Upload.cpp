// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/SpeechServer/Upload.h"

#include <charconv>
#include <optional>
#include <utility>

namespace tovik {

namespace {

constexpr int kTooManyRequests = 429;
constexpr int kUnavailable = 503;
/// How often a server that is just being started is tried.
constexpr Seconds kStartPause{0.2};

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

Upload::Upload(const ServerSettings& settings) : settings_(settings) {
    again_.setSingleShot(true);
    QObject::connect(&again_, &QTimer::timeout, &again_, [this] { attempt(); });
}

void Upload::open() {
    connection_ = std::make_unique<HttpConnection>(settings_.address);
    connection_->open();
}

void Upload::send(std::string request, std::function<void(const Outcome&)> callback) {
    request_ = std::move(request);
    callback_ = std::move(callback);
    sinceSend_.start();
    attempt();
}

Seconds Upload::timeLeft() const {
    return settings_.wholeTimeout - Seconds(static_cast<double>(sinceSend_.elapsed()) / 1000);
}

void Upload::attempt() {
    // Servers close a connection on which nothing comes for a few seconds, as while somebody speaks.
    if (!connection_ || !connection_->isAlive()) {
        open();
    }
    connection_->send(request_, {settings_.connectTimeout, settings_.firstByteTimeout, timeLeft()},
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
        if (kind == HttpFailure::Kind::diedUnanswered && !std::exchange(wasRepeated_, true)) {
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
