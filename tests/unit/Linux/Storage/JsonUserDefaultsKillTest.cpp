// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Storage/JsonUserDefaults.h"
#include "support/RecordingLog.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <random>

namespace tovik::test {
namespace {

constexpr int kKills = 200;
/// Longer than one write takes, so that every moment of a write is hit.
constexpr int kLongestLifeMicroseconds = 12000;

/// The system ends this process so long from now, whatever it is doing then.
void dieIn(std::chrono::microseconds life) {
    sigevent deadly{};
    deadly.sigev_notify = SIGEV_SIGNAL;
    deadly.sigev_signo = SIGKILL;
    timer_t timer{};
    // A timer of zero would never fire.
    const itimerspec once{{}, {0, std::max<long>(1, life.count() * 1000)}};
    if (::timer_create(CLOCK_MONOTONIC, &deadly, &timer) != 0 ||
        ::timer_settime(timer, 0, &once, nullptr) != 0) {
        ::_exit(EXIT_FAILURE);
    }
}

/// A text that shows whether it is whole: its number, then that number again and again.
std::string textFor(int number) {
    std::string text;
    while (text.size() < 20000) {
        text += std::to_string(number) + " ";
    }
    return text;
}

/// Writes ever higher numbers until it is killed, and reports each one that set() has returned from. Its life
/// begins when it has written once.
[[noreturn]] void writeUntilKilled(const std::string& file, int number, int reportFd,
                                   std::chrono::microseconds life) {
    RecordingLog log;
    JsonUserDefaults defaults(file, log);
    for (bool isFirst = true;; isFirst = false) {
        ++number;
        defaults.set("text", textFor(number));
        (void)!::write(reportFd, &number, sizeof number);
        if (isFirst) {
            dieIn(life);
        }
        defaults.set("number", number);
    }
}

/// The highest number reported before the writer was killed.
int lastReport(int fd, int before) {
    int number = before;
    for (int next = 0; ::read(fd, &next, sizeof next) == sizeof next;) {
        number = next;
    }
    return number;
}

TEST(JsonUserDefaultsKill, whenTheWriterIsKilledAtAnyMoment_theFileIsWholeAndHoldsTheOldOrTheNew) {
    const TemporaryFolder folder;
    const auto file = folder / "defaults.json";
    RecordingLog log;
    JsonUserDefaults reader(file, log);
    reader.set("kept", "always");
    std::mt19937 random(20250301);
    std::uniform_int_distribution<int> life(0, kLongestLifeMicroseconds);
    int number = 0;
    for (int kill = 0; kill < kKills; ++kill) {
        std::array<int, 2> report{};
        ASSERT_EQ(::pipe(report.data()), 0);
        const std::chrono::microseconds lifetime(life(random));
        const auto writer = ::fork();
        ASSERT_GE(writer, 0);
        if (writer == 0) {
            writeUntilKilled(file, number, report[1], lifetime);
        }
        ::close(report[1]);
        int end = 0;
        ASSERT_EQ(::waitpid(writer, &end, 0), writer);
        ASSERT_TRUE(WIFSIGNALED(end) && WTERMSIG(end) == SIGKILL) << "after kill " << kill;
        const auto reported = lastReport(report[0], number);
        ::close(report[0]);

        ASSERT_EQ(reader.string("kept"), "always") << "after kill " << kill;
        const auto text = reader.string("text");
        ASSERT_TRUE(text) << "after kill " << kill;
        const auto found = std::stoi(*text);
        ASSERT_EQ(*text, textFor(found)) << "after kill " << kill;
        ASSERT_GT(reported, number) << "after kill " << kill;
        ASSERT_GE(found, reported) << "after kill " << kill;
        ASSERT_LE(found, reported + 1) << "after kill " << kill;
        number = found;
    }
    EXPECT_THAT(log.printed(), testing::IsEmpty());
    reader.set("kept", "still");
    for (const auto& name : namesIn(folder.path())) {
        EXPECT_THAT(name, testing::AnyOf("defaults.json", "defaults.json.lock"));
    }
}

} // namespace
} // namespace tovik::test
