// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Server/Upload.h"

#include "support/EventLoop.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tovik::test {
namespace {

using testing::HasSubstr;

constexpr qsizetype kMegabyte = 1 << 20;

/// A server that takes in what comes only as fast as a test wants, in the thread of the test.
class SlowServer {
public:
    SlowServer() {
        server_.listen(QHostAddress::LocalHost);
        QObject::connect(&server_, &QTcpServer::newConnection, &server_, [this] {
            auto* const connection = server_.nextPendingConnection();
            // What the system or Qt holds for the server counts as taken in.
            connection->setSocketOption(QAbstractSocket::ReceiveBufferSizeSocketOption, kPortion);
            connection->setReadBufferSize(kPortion);
            connections_.push_back(connection);
            received_.emplace_back();
        });
        QObject::connect(&pace_, &QTimer::timeout, &server_, [this] { takeIn(); });
    }

    /// Takes in some 1.6 MB a second from now on, and answers whatever has so many bytes.
    void takeInSlowly(qsizetype answeredAt) {
        answeredAt_ = answeredAt;
        pace_.start(std::chrono::milliseconds(10));
    }

    [[nodiscard]] std::size_t connections() const { return connections_.size(); }
    /// On each connection, oldest first.
    [[nodiscard]] const std::vector<QByteArray>& received() const { return received_; }

    [[nodiscard]] ServerSettings settings() const {
        ServerSettings settings;
        settings.address.host = "127.0.0.1";
        settings.address.port = server_.serverPort();
        settings.connectTimeout = Seconds(20);
        return settings;
    }

private:
    static constexpr qint64 kPortion = 16 << 10;

    void takeIn() {
        for (std::size_t i = 0; i < connections_.size(); ++i) {
            const auto portion = connections_[i]->read(kPortion);
            received_[i] += portion;
            if (!portion.isEmpty() && received_[i].size() >= answeredAt_) {
                connections_[i]->write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nhi");
            }
        }
    }

    QTcpServer server_;
    QTimer pace_;
    qsizetype answeredAt_ = 0;
    std::vector<QTcpSocket*> connections_;
    std::vector<QByteArray> received_;
};

class UploadTest : public testing::Test {
protected:
    /// The body of the answer, or what went wrong.
    static std::string send(Upload& upload, qsizetype size) {
        std::optional<Upload::Outcome> outcome;
        upload.send(std::string(static_cast<std::size_t>(size), 'x'),
                    [&](const Upload::Outcome& answer) { outcome = answer; });
        if (!runUntil([&] { return outcome.has_value(); }, std::chrono::seconds(60))) {
            return "nothing at all";
        }
        const auto* const failure = std::get_if<HttpFailure>(&*outcome);
        return failure != nullptr ? failure->description : std::get<HttpResponse>(*outcome).body;
    }

    SlowServer server_;
    ServerSettings settings_ = server_.settings();
};

TEST_F(UploadTest, whenSendingTakesLongerThanAnAnswerMay_isAnsweredAllTheSame) {
    settings_.firstByteTimeout = Seconds(2);
    settings_.wholeTimeout = Seconds(2);
    server_.takeInSlowly(4 * kMegabyte);
    Upload upload(settings_);
    EXPECT_EQ(send(upload, 4 * kMegabyte), "hi");
}

TEST_F(UploadTest, whenTheServerTakesNothingIn_givesUp) {
    settings_.firstByteTimeout = Seconds(0.2);
    Upload upload(settings_);
    EXPECT_THAT(send(upload, 8 * kMegabyte), HasSubstr("takes in nothing of what is sent to it"));
    EXPECT_EQ(server_.connections(), 1U);
}

TEST_F(UploadTest, whenSendingWouldTakeForEver_givesUp) {
    HttpConnection connection(settings_.address);
    connection.open();
    // The time for sending counts from the call, and connecting is no part of this.
    ASSERT_TRUE(runUntil([this] { return server_.connections() == 1; }));
    server_.takeInSlowly(64 * kMegabyte);
    std::optional<HttpConnection::Outcome> outcome;
    connection.send(
        std::string(64 * kMegabyte, 'x'),
        {.connect = Seconds(20), .firstByte = Seconds(20), .sending = Seconds(0.3), .whole = Seconds(20)},
        [&](const HttpConnection::Outcome& answer) { outcome = answer; });
    ASSERT_TRUE(runUntil([&] { return outcome.has_value(); }));
    ASSERT_TRUE(std::holds_alternative<HttpFailure>(*outcome));
    EXPECT_THAT(std::get<HttpFailure>(*outcome).description, HasSubstr("takes in too slowly"));
}

TEST_F(UploadTest, whenAConnectionIsDroppedInTheMiddle_itIsNotCalledBackAnyMore) {
    const auto held = std::make_shared<bool>(false);
    {
        HttpConnection connection(settings_.address);
        connection.open();
        connection.send(
            std::string(8 * kMegabyte, 'x'),
            {.connect = Seconds(20), .firstByte = Seconds(20), .sending = Seconds(20), .whole = Seconds(20)},
            [held](const HttpConnection::Outcome&) { *held = true; });
        ASSERT_TRUE(runUntil([this] { return server_.connections() == 1; }));
    }
    runPendingEvents();
    EXPECT_FALSE(*held);
    // The callback is let go of once, not a second time by what happens while the connection is destroyed.
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(UploadTest, whileSomebodySpeaksForLong_theConnectionIsMadeAnew) {
    Upload upload(settings_, Seconds(0.02));
    upload.open();
    ASSERT_TRUE(runUntil([this] { return server_.connections() >= 3; }));
    server_.takeInSlowly(100);
    EXPECT_EQ(send(upload, 100), "hi");
    EXPECT_EQ(server_.received().back().size(), 100);
}

} // namespace
} // namespace tovik::test
