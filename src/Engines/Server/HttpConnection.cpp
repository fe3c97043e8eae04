// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Server/HttpConnection.h"

#include <QSslConfiguration>
#include <QSslError>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace tovik {

namespace {

/// What is handed to the system and not yet under way. Without a limit the system takes megabytes at once,
/// and nobody can tell whether they get anywhere.
constexpr int kUnsentBytes = 64 << 10;

} // namespace

HttpConnection::HttpConnection(ServerAddress address) : address_(std::move(address)) {
    stepTimer_.setSingleShot(true);
    wholeTimer_.setSingleShot(true);
    QObject::connect(&socket_, address_.isEncrypted ? &QSslSocket::encrypted : &QSslSocket::connected,
                     &socket_, [this] { connected(); });
    QObject::connect(&socket_,
                     address_.isEncrypted ? &QSslSocket::encryptedBytesWritten : &QSslSocket::bytesWritten,
                     &socket_, [this] { sent(); });
    QObject::connect(&socket_, &QSslSocket::readyRead, &socket_, [this] { read(); });
    QObject::connect(&socket_, &QSslSocket::disconnected, &socket_, [this] { disconnected(); });
    QObject::connect(&socket_, &QSslSocket::errorOccurred, &socket_, [this] { failed(); });
    QObject::connect(&stepTimer_, &QTimer::timeout, &stepTimer_, [this] { stalled(); });
    QObject::connect(&wholeTimer_, &QTimer::timeout, &wholeTimer_, [this] { outOfTime(); });
}

HttpConnection::~HttpConnection() {
    // It closes while it is destroyed, and would tell an object whose other members are gone already.
    socket_.disconnect();
}

int HttpConnection::milliseconds(Seconds time) {
    return static_cast<int>(
        std::clamp(time.count() * 1000, 1.0, static_cast<double>(std::numeric_limits<int>::max())));
}

void HttpConnection::open() {
    const auto host = QString::fromStdString(address_.host);
    // The upload of a short dictation is a few packets; each should leave at once.
    socket_.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    if (address_.isEncrypted) {
        socket_.connectToHostEncrypted(host, address_.port);
    } else {
        socket_.connectToHost(host, address_.port);
    }
}

bool HttpConnection::isAlive() const {
    return step_ != Step::over && !earlyFailure_ && socket_.state() != QAbstractSocket::UnconnectedState &&
           socket_.state() != QAbstractSocket::ClosingState;
}

void HttpConnection::send(std::string request, const Timeouts& timeouts,
                          std::function<void(const Outcome&)> callback) {
    request_ = std::move(request);
    timeouts_ = timeouts;
    callback_ = std::move(callback);
    wholeTimer_.start(milliseconds(timeouts_.sending));
    if (earlyFailure_) {
        QMetaObject::invokeMethod(
            &socket_, [this] { finish(*earlyFailure_); }, Qt::QueuedConnection);
    } else if (isReady_) {
        connected();
    } else {
        stepTimer_.start(milliseconds(timeouts_.connect));
    }
}

void HttpConnection::connected() {
    isReady_ = true;
    if (!callback_ || step_ != Step::connecting) {
        return;
    }
    step_ = Step::sending;
    const int unsent = kUnsentBytes;
    ::setsockopt(static_cast<int>(socket_.socketDescriptor()), IPPROTO_TCP, TCP_NOTSENT_LOWAT, &unsent,
                 sizeof unsent);
    socket_.write(request_.data(), static_cast<qint64>(request_.size()));
    stepTimer_.start(milliseconds(timeouts_.firstByte));
    socket_.flush();
}

void HttpConnection::sent() {
    if (step_ != Step::sending) {
        return;
    }
    stepTimer_.start(milliseconds(timeouts_.firstByte));
    if (socket_.bytesToWrite() == 0 && socket_.encryptedBytesToWrite() == 0) {
        step_ = Step::waiting;
        wholeTimer_.start(milliseconds(timeouts_.whole));
    }
}

void HttpConnection::read() {
    const auto bytes = socket_.readAll();
    if (step_ == Step::sending || step_ == Step::waiting) {
        // A server may well refuse what it has not yet taken in.
        if (step_ == Step::sending) {
            wholeTimer_.start(milliseconds(timeouts_.whole));
        }
        step_ = Step::receiving;
        stepTimer_.stop();
    }
    if (step_ != Step::receiving) {
        // Nobody has asked for anything yet.
        return;
    }
    switch (reader_.take(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())))) {
    case HttpResponseReader::State::complete:
        finish(reader_.response());
        break;
    case HttpResponseReader::State::malformed:
        fail(HttpFailure::Kind::broken, "did not answer in HTTP");
        break;
    case HttpResponseReader::State::reading:
        break;
    }
}

void HttpConnection::disconnected() {
    if (step_ == Step::receiving && reader_.end() == HttpResponseReader::State::complete) {
        finish(reader_.response());
        return;
    }
    failed();
}

void HttpConnection::failed() {
    if (step_ == Step::receiving && socket_.error() == QAbstractSocket::RemoteHostClosedError &&
        socket_.bytesAvailable() == 0) {
        // disconnected() follows, and knows whether that was the end of the response.
        if (socket_.state() != QAbstractSocket::UnconnectedState) {
            return;
        }
    }
    switch (step_) {
    case Step::connecting:
        fail(HttpFailure::Kind::notConnected, "cannot be reached: " + socketError());
        break;
    case Step::sending:
    case Step::waiting:
        fail(HttpFailure::Kind::diedUnanswered, "closed the connection without an answer");
        break;
    case Step::receiving:
        fail(HttpFailure::Kind::broken, "closed the connection in the middle of its answer");
        break;
    case Step::over:
        break;
    }
}

void HttpConnection::stalled() {
    if (step_ == Step::sending) {
        fail(HttpFailure::Kind::timedOut, "takes in nothing of what is sent to it");
    } else {
        outOfTime();
    }
}

void HttpConnection::outOfTime() {
    switch (step_) {
    case Step::connecting:
        fail(HttpFailure::Kind::timedOut, "cannot be reached in time");
        break;
    case Step::sending:
        fail(HttpFailure::Kind::timedOut, "takes in too slowly what is sent to it");
        break;
    case Step::waiting:
        fail(HttpFailure::Kind::timedOut, "does not answer");
        break;
    case Step::receiving:
        fail(HttpFailure::Kind::timedOut, "does not finish its answer in time");
        break;
    case Step::over:
        break;
    }
}

std::string HttpConnection::socketError() const {
    const auto sslErrors = socket_.sslHandshakeErrors();
    return (sslErrors.isEmpty() ? socket_.errorString() : sslErrors.front().errorString()).toStdString();
}

void HttpConnection::fail(HttpFailure::Kind kind, const std::string& what) {
    finish(HttpFailure{kind, "The speech server " + address_.origin() + " " + what});
}

void HttpConnection::finish(const Outcome& outcome) {
    if (!callback_) {
        if (const auto* failure = std::get_if<HttpFailure>(&outcome)) {
            earlyFailure_ = *failure;
        }
        return;
    }
    step_ = Step::over;
    stepTimer_.stop();
    wholeTimer_.stop();
    // Later, since whoever is called may well drop this object.
    QMetaObject::invokeMethod(
        &socket_, [callback = std::exchange(callback_, nullptr), outcome] { callback(outcome); },
        Qt::QueuedConnection);
}

} // namespace tovik
