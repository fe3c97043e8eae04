// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/LibreTranslate/JsonTransfer.h"
#include "support/EventLoop.h"
#include "support/ManualTime.h"
#include "support/TemporaryFolder.h"

#include <QFile>
#include <QProcess>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QTcpSocket>

#include <gmock/gmock.h>

#include <optional>
#include <stdexcept>

namespace tovik {
namespace {

using testing::HasSubstr;

QByteArray contentOf(const std::string& path) {
    return QByteArray::fromStdString(test::readFile(path).value_or(""));
}

/// A server with a certificate of its own making for 127.0.0.1; bare machines know no localhost.
class SelfMadeServer {
public:
    SelfMadeServer() {
        const auto key = folder_ / "key.pem";
        const auto certificate = folder_ / "certificate.pem";
        QProcess openssl;
        openssl.start("openssl",
                      {"req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes",
                       "-days", "2", "-subj", "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1",
                       "-keyout", QString::fromStdString(key), "-out", QString::fromStdString(certificate)});
        if (!openssl.waitForFinished() || openssl.exitCode() != 0) {
            throw std::runtime_error("openssl made no certificate");
        }
        certificate_ = QSslCertificate(contentOf(certificate));
        auto configuration = QSslConfiguration::defaultConfiguration();
        configuration.setLocalCertificate(certificate_);
        configuration.setPrivateKey(QSslKey(contentOf(key), QSsl::Ec));
        server_.setSslConfiguration(configuration);
        QObject::connect(&server_, &QSslServer::pendingConnectionAvailable, &server_, [this] { answer(); });
        server_.listen(QHostAddress::AnyIPv4);
    }

    [[nodiscard]] QUrl url(const QString& host) const {
        return QUrl(QString("https://%1:%2/languages").arg(host).arg(server_.serverPort()));
    }
    [[nodiscard]] const QSslCertificate& certificate() const { return certificate_; }

private:
    void answer() {
        auto* const connection = server_.nextPendingConnection();
        QObject::connect(connection, &QTcpSocket::readyRead, connection, [connection] {
            connection->readAll();
            connection->write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n[]");
        });
    }

    test::TemporaryFolder folder_;
    QSslCertificate certificate_;
    QSslServer server_;
};

class TlsTest : public testing::Test {
protected:
    Result<JsonTransfer::Answer> get(const QUrl& url) {
        JsonTransfer transfer(time);
        std::optional<Result<JsonTransfer::Answer>> answer;
        transfer.get(url, [&](const Result<JsonTransfer::Answer>& given) { answer = given; });
        EXPECT_TRUE(test::runUntil([&] { return answer.has_value(); }));
        return answer.value_or(Error{"test", 0, "no answer"});
    }

    void TearDown() override { QSslConfiguration::setDefaultConfiguration(usual); }

    const QSslConfiguration usual = QSslConfiguration::defaultConfiguration();
    test::ManualTime time;
    SelfMadeServer server;
};

TEST_F(TlsTest, aCertificateThatNobodyVouchesFor_isRefused) {
    const auto answer = get(server.url("127.0.0.1"));
    ASSERT_FALSE(answer);
    EXPECT_THAT(answer.error().description, HasSubstr("certificate"));
}

TEST_F(TlsTest, aCertificateThatTheSystemTrusts_isAccepted) {
    auto trusting = usual;
    trusting.setCaCertificates({server.certificate()});
    QSslConfiguration::setDefaultConfiguration(trusting);
    const auto answer = get(server.url("127.0.0.1"));
    ASSERT_TRUE(answer) << answer.error().description;
    EXPECT_EQ(answer.value().status, 200);
}

TEST_F(TlsTest, aCertificateForAnotherName_isRefused) {
    auto trusting = usual;
    trusting.setCaCertificates({server.certificate()});
    QSslConfiguration::setDefaultConfiguration(trusting);
    EXPECT_FALSE(get(server.url("127.0.0.2")));
}

} // namespace
} // namespace tovik
