// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Storage/StandardLog.h"

#include "support/TemporaryFolder.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <sstream>
#include <thread>
#include <vector>

namespace tovik::test {
namespace {

struct Pipe {
    Pipe() {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) == 0) {
            reader = UnixFd(ends[0]);
            writer = UnixFd(ends[1]);
        }
    }
    /// What has been written so far.
    [[nodiscard]] std::string content() const {
        std::array<char, 65536> buffer{};
        ::fcntl(reader.get(), F_SETFL, O_NONBLOCK);
        std::string all;
        for (ssize_t got = 0; (got = ::read(reader.get(), buffer.data(), buffer.size())) > 0;) {
            all.append(buffer.data(), static_cast<std::size_t>(got));
        }
        return all;
    }
    UnixFd reader;
    UnixFd writer;
};

/// The receiving end of a syslog socket.
class LogService {
public:
    explicit LogService(const std::string& path) : socket_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(::bind(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    }
    /// The next message that has already arrived.
    [[nodiscard]] std::string next() const {
        std::array<char, 65536> buffer{};
        const auto got = ::recv(socket_.get(), buffer.data(), buffer.size(), MSG_DONTWAIT);
        return got < 0 ? "" : std::string(buffer.data(), static_cast<std::size_t>(got));
    }

private:
    UnixFd socket_;
};

class StandardLogTest : public testing::Test {
protected:
    TemporaryFolder folder;
    std::string socketPath = folder / "log";
    Pipe output;
    Pipe errors;
};

TEST_F(StandardLogTest, whenALineIsPrinted_itStandsThereAtOnceWithALineFeed) {
    StandardLog log(output.writer.get(), errors.writer.get(), socketPath);
    log.printLine("[TovikVoice] Grüße");
    EXPECT_EQ(output.content(), "[TovikVoice] Grüße\n");
    EXPECT_EQ(errors.content(), "");
}

TEST_F(StandardLogTest, whenManyThreadsPrint_everyLineIsWhole) {
    StandardLog log(output.writer.get(), errors.writer.get(), socketPath);
    std::vector<std::thread> threads;
    for (const char letter : {'a', 'b', 'c'}) {
        threads.emplace_back([&log, letter] {
            for (int n = 0; n < 100; ++n) {
                log.printLine(std::string(80, letter));
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    std::istringstream lines(output.content());
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        EXPECT_EQ(line, std::string(80, line.empty() ? '?' : line.front()));
    }
    EXPECT_EQ(count, 300);
}

TEST_F(StandardLogTest, whenTheReaderOfStandardOutputIsGone_theProgramGoesOn) {
    StandardLog log(output.writer.get(), errors.writer.get(), socketPath);
    output.reader.reset();
    log.printLine("nobody reads this");
    log.printLine("nor this");
    sigset_t pending;
    sigpending(&pending);
    EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
    log.logLine("but this");
    EXPECT_EQ(errors.content(), "but this\n");
}

TEST_F(StandardLogTest,
       whenTheReaderOfStandardOutputStopsReading_theProgramGoesOnAndLaterTellsWhatIsMissing) {
    StandardLog log(output.writer.get(), errors.writer.get(), socketPath);
    const std::string line(1000, 'x');
    // Many times what a pipe holds: a log that waited for the reader would wait here for ever.
    constexpr int lines = 1000;
    for (int n = 0; n < lines; ++n) {
        log.printLine(line);
    }
    const auto taken = output.content();
    log.printLine("again");
    const auto later = output.content();
    EXPECT_GT(taken.size(), line.size());
    EXPECT_LT(taken.size(), line.size() * lines / 2);
    EXPECT_THAT(later, testing::MatchesRegex("\n?\\[TovikVoice\\] [0-9]+ lines are missing here\nagain\n"));
}

TEST_F(StandardLogTest, whenALogServiceListens_theLineReachesItAsAUserNoticeOfThisProgram) {
    const LogService service(socketPath);
    StandardLog log(output.writer.get(), errors.writer.get(), socketPath);
    log.logLine("[TovikVoice] Starting application...");
    EXPECT_THAT(service.next(),
                testing::MatchesRegex("<13>[A-Z][a-z][a-z] [ 123][0-9] [0-9:]+ tovik-record\\[" +
                                      std::to_string(::getpid()) +
                                      "\\]: \\[TovikVoice\\] Starting application\\.\\.\\."));
    EXPECT_EQ(output.content(), "");
    EXPECT_EQ(errors.content(), "");
}

TEST_F(StandardLogTest, whenNoLogServiceIsThere_theLineGoesToStandardError) {
    StandardLog log(output.writer.get(), errors.writer.get(), socketPath);
    log.logLine("[TovikVoice] Created AppDelegate");
    EXPECT_EQ(errors.content(), "[TovikVoice] Created AppDelegate\n");
}

TEST_F(StandardLogTest, whenTheLogServiceRestarts_linesReachTheNewOne) {
    StandardLog log(output.writer.get(), errors.writer.get(), socketPath);
    {
        const LogService service(socketPath);
        log.logLine("one");
        EXPECT_THAT(service.next(), testing::EndsWith("one"));
    }
    log.logLine("two");
    EXPECT_EQ(errors.content(), "two\n");
    std::filesystem::remove(socketPath);
    const LogService service(socketPath);
    log.logLine("three");
    EXPECT_THAT(service.next(), testing::EndsWith("three"));
}

TEST_F(StandardLogTest, whenTheLogServiceHangs_theProgramDoesNot) {
    const LogService service(socketPath);
    StandardLog log(output.writer.get(), errors.writer.get(), socketPath);
    for (int n = 0; n < 2000; ++n) {
        log.logLine("nobody takes these away");
    }
    EXPECT_THAT(errors.content(), testing::HasSubstr("nobody takes these away"));
}

TEST_F(StandardLogTest, whenALineHoldsANul_theRestOfItReachesTheLogToo) {
    const LogService service(socketPath);
    StandardLog log(output.writer.get(), errors.writer.get(), socketPath);
    log.logLine(std::string_view("a\0b", 3));
    EXPECT_THAT(service.next(), testing::EndsWith("a b"));
}

} // namespace
} // namespace tovik::test
