// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Lifetime.h"
#include "Platform/MainQueue.h"
#include "Platform/Result.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QUrl>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace tovik {

/// Asks web servers for JSON. Certificates are verified, redirections are not followed, answers end after 10
/// s and at 16 MB. Main thread; it aborts with this object what is under way then.
class JsonTransfer {
public:
    struct Answer {
        int status = 0;
        nlohmann::json content;
    };
    /// An error when there was no answer; its content is discarded (see nlohmann::json) when it was no JSON.
    using Completion = std::function<void(const Result<Answer>&)>;

    explicit JsonTransfer(MainQueue& queue);
    ~JsonTransfer();
    JsonTransfer(const JsonTransfer&) = delete;
    JsonTransfer& operator=(const JsonTransfer&) = delete;

    void get(const QUrl& address, Completion completion);
    void post(const QUrl& address, const nlohmann::json& content, Completion completion);

private:
    struct DeleteLater {
        void operator()(QObject* object) const { object->deleteLater(); }
    };
    struct Task {
        std::unique_ptr<QNetworkReply, DeleteLater> reply;
        Completion completion;
        Subscription timeLimit;
    };

    [[nodiscard]] QNetworkAccessManager& network();
    void follow(QNetworkReply* reply, Completion completion);
    void finish(std::uint64_t id);
    void fail(std::uint64_t id, const Error& error);
    [[nodiscard]] std::optional<Task> take(std::uint64_t id);

    MainQueue& queue_;
    /// Made when it is needed first: most users name no server, and every launch would pay for it.
    std::unique_ptr<QNetworkAccessManager> network_;
    std::uint64_t nextId_ = 1;
    std::map<std::uint64_t, Task> tasks_;
};

} // namespace tovik
