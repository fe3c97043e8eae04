// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/LibreTranslate/JsonTransfer.h"

#include <QByteArray>
#include <QNetworkRequest>
#include <QSslError>

#include <utility>

namespace tovik {

namespace {

constexpr Seconds kTimeLimit{10.0};
constexpr qint64 kLongestAnswer = 16 << 20;

Error noAnswer(const std::string& reason) {
    return {"TranslationServer", 1, "The translation server gave no answer: " + reason};
}

QNetworkRequest requestTo(const QUrl& address) {
    QNetworkRequest request(address);
    // A redirection could take the text and the key to another place.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setRawHeader("Accept", "application/json");
    return request;
}

} // namespace

JsonTransfer::JsonTransfer(MainQueue& queue) : queue_(queue) {}

JsonTransfer::~JsonTransfer() {
    // Aborting tells the slots, which must find nothing any more.
    auto tasks = std::exchange(tasks_, {});
    for (auto& [id, task] : tasks) {
        task.reply->abort();
        task.reply.reset();
    }
}

QNetworkAccessManager& JsonTransfer::network() {
    if (!network_) {
        network_ = std::make_unique<QNetworkAccessManager>();
    }
    return *network_;
}

void JsonTransfer::get(const QUrl& address, Completion completion) {
    follow(network().get(requestTo(address)), std::move(completion));
}

void JsonTransfer::post(const QUrl& address, const nlohmann::json& content, Completion completion) {
    auto request = requestTo(address);
    request.setHeader(QNetworkRequest::ContentTypeHeader, "application/json");
    const auto body = content.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    follow(network().post(request, QByteArray::fromStdString(body)), std::move(completion));
}

void JsonTransfer::follow(QNetworkReply* reply, Completion completion) {
    const auto id = nextId_++;
    tasks_[id] = {std::unique_ptr<QNetworkReply, DeleteLater>(reply), std::move(completion),
                  queue_.after(kTimeLimit, [this, id] { fail(id, noAnswer("it took too long.")); })};
    // Qt tells some failures from within the call that begins the transfer, and then later once more.
    QObject::connect(
        reply, &QNetworkReply::finished, reply, [this, id] { finish(id); }, Qt::QueuedConnection);
    QObject::connect(reply, &QNetworkReply::downloadProgress, reply, [this, id](qint64 received, qint64) {
        if (received > kLongestAnswer) {
            fail(id, noAnswer("it was too long."));
        }
    });
}

void JsonTransfer::finish(std::uint64_t id) {
    auto task = take(id);
    if (!task) {
        return;
    }
    const auto& reply = *task->reply;
    const auto status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute);
    // An error status counts as an error with Qt, too; its content may say more.
    const bool hasAnswered =
        status.isValid() && (reply.error() == QNetworkReply::NoError || status.toInt() >= 300);
    if (!hasAnswered) {
        task->completion(noAnswer(reply.errorString().toStdString()));
        return;
    }
    const auto body = task->reply->readAll();
    task->completion(Answer{status.toInt(), nlohmann::json::parse(body.begin(), body.end(), nullptr, false)});
}

void JsonTransfer::fail(std::uint64_t id, const Error& error) {
    auto task = take(id);
    if (task) {
        task->reply->abort();
        task->completion(error);
    }
}

std::optional<JsonTransfer::Task> JsonTransfer::take(std::uint64_t id) {
    auto found = tasks_.extract(id);
    if (found.empty()) {
        return std::nullopt;
    }
    found.mapped().timeLimit.end();
    return std::move(found.mapped());
}

} // namespace tovik
