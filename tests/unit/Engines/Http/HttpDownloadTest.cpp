// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/TemporaryFolder.h"
#include "unit/Engines/Http/HttpFixture.h"

#include <gmock/gmock.h>

#include <atomic>
#include <filesystem>
#include <mutex>
#include <vector>

namespace tovik::test {
namespace {

using testing::HasSubstr;
using testing::SizeIs;
using Kind = HttpFailure::Kind;

/// A server that has a file and knows ranges, as far as a test lets it.
class HttpDownload : public HttpFixture {
protected:
    HttpDownload() {
        for (int i = 0; i < 300000; ++i) {
            content_ += static_cast<char>('a' + i * 7 % 26);
        }
        server_.setHandler([this](HttpExchange& exchange) { give(exchange); });
    }

    void give(HttpExchange& exchange) {
        const auto& headers = exchange.request().headers;
        const auto range = headers.find("range");
        const auto condition = headers.find("if-range");
        const bool isSame = condition == headers.end() || condition->second == tag_;
        std::size_t from = 0;
        if (range != headers.end() && isSame && knowsRanges_) {
            from = std::stoul(range->second.substr(6));
        }
        if (from > content_.size()) {
            exchange.answer(416, "text/plain", "");
            return;
        }
        std::string head = from > 0 ? "HTTP/1.1 206 Partial\r\nContent-Range: bytes " + std::to_string(from) +
                                          "-" + std::to_string(content_.size() - 1) + "/" +
                                          std::to_string(content_.size()) + "\r\n"
                                    : "HTTP/1.1 200 OK\r\n";
        head += tag_.empty() ? "" : "ETag: " + tag_ + "\r\n";
        const auto rest = content_.substr(from);
        exchange.sendRaw(head + "Content-Length: " + std::to_string(rest.size()) + "\r\n\r\n" +
                         rest.substr(0, mostAtOnce_));
    }

    HttpOutcome load() {
        auto question = request();
        question.file = file_;
        question.limits.mostBytes = 1 << 20;
        question.limits.answer = Seconds(0.001);
        question.progress = [this](std::uint64_t received, std::uint64_t total) {
            const std::lock_guard lock(mutex_);
            progress_.emplace_back(received, total);
        };
        return ask(question);
    }

    void expectWhole() {
        const auto outcome = load();
        EXPECT_NE(responseOf(outcome), nullptr) << textOf(outcome);
        EXPECT_EQ(readFile(file_), content_);
        EXPECT_FALSE(std::filesystem::exists(file_ + ".etag"));
    }
    /// The first 100,000 bytes.
    void loadAPart() {
        mostAtOnce_ = 100000;
        EXPECT_THAT(textOf(load()), HasSubstr("in the middle of its answer"));
        EXPECT_EQ(readFile(file_)->size(), 100000U);
        mostAtOnce_ = std::string::npos;
    }
    [[nodiscard]] std::string lastRange() const {
        const auto headers = server_.requests().back().headers;
        return headers.contains("range") ? headers.at("range") : "";
    }

    const TemporaryFolder folder_;
    const std::string file_ = folder_ / "model.part";
    std::string content_;
    std::string tag_ = "\"one\"";
    bool knowsRanges_ = true;
    std::size_t mostAtOnce_ = std::string::npos;
    std::mutex mutex_;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> progress_;
};

TEST_F(HttpDownload, aFile_isStoredAndItsProgressTold) {
    expectWhole();
    ASSERT_FALSE(progress_.empty());
    EXPECT_EQ(progress_.back(), std::pair(std::uint64_t{300000}, std::uint64_t{300000}));
}

TEST_F(HttpDownload, whatWasCutOff_isGoneOnWith) {
    loadAPart();
    progress_.clear();
    expectWhole();
    EXPECT_EQ(lastRange(), "bytes=100000-");
    EXPECT_GE(progress_.front().first, 100000U);
    EXPECT_EQ(progress_.back(), std::pair(std::uint64_t{300000}, std::uint64_t{300000}));
}

TEST_F(HttpDownload, aFileThatChangedMeanwhile_isBegunAnew) {
    loadAPart();
    tag_ = "\"two\"";
    content_ = "quite another file";
    expectWhole();
}

TEST_F(HttpDownload, aServerWithoutRanges_givesTheWholeAgain) {
    loadAPart();
    knowsRanges_ = false;
    expectWhole();
}

TEST_F(HttpDownload, aFileWithoutAVersion_isNotGoneOnWith) {
    tag_.clear();
    loadAPart();
    expectWhole();
    EXPECT_EQ(lastRange(), "");
}

TEST_F(HttpDownload, aPartThatIsTooLong_isBegunAnew) {
    loadAPart();
    content_.resize(50000);
    expectWhole();
    EXPECT_THAT(server_.requests(), SizeIs(3));
}

TEST_F(HttpDownload, aPartThatWasNotAskedFor_isNotStored) {
    loadAPart();
    server_.setHandler([](HttpExchange& exchange) {
        exchange.answer(206, "text/plain", "wrong", {{"Content-Range", "bytes 5-9/300000"}});
    });
    EXPECT_THAT(textOf(load()), HasSubstr("another part of the file"));
    server_.setHandler([this](HttpExchange& exchange) { give(exchange); });
    expectWhole();
}

TEST_F(HttpDownload, anErrorPage_isNotTheFile) {
    loadAPart();
    server_.setHandler([](HttpExchange& exchange) { exchange.answer(404, "text/html", "<html>"); });
    const auto outcome = load();
    ASSERT_NE(responseOf(outcome), nullptr);
    EXPECT_EQ(responseOf(outcome)->status, 404);
    EXPECT_EQ(readFile(file_)->size(), 100000U);
    server_.setHandler([this](HttpExchange& exchange) { give(exchange); });
    expectWhole();
}

TEST_F(HttpDownload, aFileThatIsLargerThanItMayBe_isGivenUp) {
    content_.assign(3 << 20, 'x');
    const auto outcome = load();
    ASSERT_EQ(responseOf(outcome), nullptr);
    EXPECT_EQ(std::get<HttpFailure>(outcome).kind, Kind::tooLong);
}

TEST_F(HttpDownload, anEmptyFile_isStored) {
    content_.clear();
    expectWhole();
}

TEST_F(HttpDownload, aServerThatStopsSending_isGivenUpAndGoneOnWithLater) {
    server_.setHandler([this](HttpExchange& exchange) {
        exchange.sendRaw("HTTP/1.1 200 OK\r\nETag: \"one\"\r\nContent-Length: 300000\r\n\r\n" +
                         content_.substr(0, 70000));
        exchange.stall();
    });
    auto question = request();
    question.file = file_;
    question.limits.stall = Seconds(0.3);
    EXPECT_EQ(textOf(ask(question)), "does not finish its answer in time");
    server_.setHandler([this](HttpExchange& exchange) { give(exchange); });
    expectWhole();
    EXPECT_EQ(lastRange(), "bytes=70000-");
}

TEST_F(HttpDownload, whereNothingCanBeStored_saysSo) {
    auto question = request();
    question.file = folder_ / "missing/model.part";
    const auto outcome = ask(question);
    ASSERT_EQ(responseOf(outcome), nullptr);
    EXPECT_EQ(std::get<HttpFailure>(outcome).kind, Kind::notStored);
}

} // namespace
} // namespace tovik::test
