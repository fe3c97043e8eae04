// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/SingleInstance.h"

#include "support/EventLoop.h"
#include "support/TemporaryFolder.h"

#include <QCoreApplication>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <future>
#include <iterator>
#include <thread>
#include <utility>
#include <vector>

namespace tovik::test {
namespace {

using Role = SingleInstance::Role;

/// Claims in another thread, as another copy would in another process, while the event loop here runs.
Result<Role> claimElsewhere(const std::string& folder, const std::string& display) {
    auto claim = std::async(std::launch::async, [&] { return SingleInstance(folder, display).claim(); });
    EXPECT_TRUE(
        runUntil([&] { return claim.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
    return claim.get();
}

/// Another process that has claimed the place and holds it until it is told otherwise.
class OtherCopy {
public:
    OtherCopy(const std::string& folder, const std::string& display) {
        std::array<int, 2> ready{};
        EXPECT_EQ(::pipe(ready.data()), 0);
        process_ = ::fork();
        if (process_ == 0) {
            SingleInstance instance(folder, display);
            const auto claimed = instance.claim();
            const char outcome = claimed && claimed.value() == Role::first ? '1' : '?';
            (void)!::write(ready[1], &outcome, 1);
            while (true) {
                ::pause();
            }
        }
        char outcome = 0;
        EXPECT_EQ(::read(ready[0], &outcome, 1), 1);
        EXPECT_EQ(outcome, '1');
        ::close(ready[0]);
        ::close(ready[1]);
    }
    OtherCopy(const OtherCopy&) = delete;
    OtherCopy& operator=(const OtherCopy&) = delete;
    ~OtherCopy() { kill(); }
    void kill() {
        if (process_ > 0) {
            ::kill(process_, SIGKILL);
            ::waitpid(process_, nullptr, 0);
            process_ = 0;
        }
    }

private:
    pid_t process_ = 0;
};

class SingleInstanceTest : public testing::Test {
protected:
    /// As a second copy would, but without a word.
    [[nodiscard]] UnixFd connectTo(const std::string& display) const {
        const auto shortcut = home / "s";
        if (!std::filesystem::exists(shortcut)) {
            std::filesystem::create_directory_symlink(folder, shortcut);
        }
        UnixFd socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const auto path = shortcut + "/tovik-record-%3A" + display.substr(1) + ".socket";
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        return socket;
    }
    [[nodiscard]] static std::ptrdiff_t openDescriptors() {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    }

    TemporaryFolder home;
    /// Longer than any socket's path may be.
    std::string folder = home / std::string(120, 'r');
};

TEST_F(SingleInstanceTest, whenNobodyRuns_theCopyIsTheFirst) {
    SingleInstance instance(folder, ":0");
    const auto role = instance.claim();
    ASSERT_TRUE(role) << role.error().description;
    EXPECT_EQ(role.value(), Role::first);
}

TEST_F(SingleInstanceTest, whenAnotherCopyRuns_itComesForwardAndThisOneIsTheSecond) {
    SingleInstance first(folder, ":0");
    ASSERT_EQ(first.claim().value(), Role::first);
    const auto mainThread = std::this_thread::get_id();
    int requests = 0;
    first.onRequest([&] {
        EXPECT_EQ(std::this_thread::get_id(), mainThread);
        ++requests;
    });
    EXPECT_EQ(claimElsewhere(folder, ":0").value(), Role::second);
    EXPECT_EQ(claimElsewhere(folder, ":0.1").value(), Role::second);
    EXPECT_EQ(requests, 2);
}

TEST_F(SingleInstanceTest, whenTheFirstIsStillStarting_theSecondWaitsUntilItAnswers) {
    SingleInstance first(folder, ":0");
    ASSERT_EQ(first.claim().value(), Role::first);
    auto second = std::async(std::launch::async, [&] { return SingleInstance(folder, ":0").claim(); });
    // The request is there before anybody listens to it.
    ASSERT_EQ(second.wait_for(std::chrono::milliseconds(30)), std::future_status::timeout);
    int requests = 0;
    first.onRequest([&] { ++requests; });
    EXPECT_TRUE(
        runUntil([&] { return second.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
    EXPECT_EQ(second.get().value(), Role::second);
    EXPECT_EQ(requests, 1);
}

TEST_F(SingleInstanceTest, whenTheDisplaysDiffer_bothAreFirst) {
    SingleInstance here(folder, ":0");
    SingleInstance there(folder, ":1");
    SingleInstance nowhere(folder, "");
    EXPECT_EQ(here.claim().value(), Role::first);
    EXPECT_EQ(there.claim().value(), Role::first);
    EXPECT_EQ(nowhere.claim().value(), Role::first);
}

TEST_F(SingleInstanceTest, whenTheFirstIsKilled_whatItLeavesBehindIsNotInTheWay) {
    OtherCopy other(folder, ":0");
    other.kill();
    ASSERT_THAT(namesIn(folder), testing::Contains("tovik-record-%3A0.socket"));
    SingleInstance instance(folder, ":0");
    EXPECT_EQ(instance.claim().value(), Role::first);
    instance.onRequest([] {});
    EXPECT_EQ(claimElsewhere(folder, ":0").value(), Role::second);
}

TEST_F(SingleInstanceTest, whenTheFirstEnds_theNextOneIsTheFirst) {
    {
        SingleInstance instance(folder, ":0");
        EXPECT_EQ(instance.claim().value(), Role::first);
    }
    SingleInstance next(folder, ":0");
    EXPECT_EQ(next.claim().value(), Role::first);
}

TEST_F(SingleInstanceTest, whenTheFirstEndsWhileTheSecondWaitsForIt_theSecondTakesOver) {
    SingleInstance first(folder, ":0");
    ASSERT_EQ(first.claim().value(), Role::first);
    auto second = std::async(std::launch::async, [&] { return SingleInstance(folder, ":0").claim(); });
    ASSERT_EQ(second.wait_for(std::chrono::milliseconds(30)), std::future_status::timeout);
    first.release();
    first.release();
    const auto role = second.get();
    ASSERT_TRUE(role) << role.error().description;
    EXPECT_EQ(role.value(), Role::first);
}

TEST_F(SingleInstanceTest, whenTheFirstHangs_theSecondGivesUpWithASentence) {
    const OtherCopy hanging(folder, ":0");
    SingleInstance second(folder, ":0", Seconds(0.2));
    const auto claimed = second.claim();
    ASSERT_FALSE(claimed);
    EXPECT_THAT(
        claimed.error().description,
        testing::StartsWith("Another copy of Tovik Record is running on this desktop and does not answer"));
}

TEST_F(SingleInstanceTest, whenManyStartAtTheSameMoment_exactlyOneIsFirstAndAllOthersReachIt) {
    for (int round = 0; round < 10; ++round) {
        constexpr int kCopies = 8;
        const auto roundFolder = home / ("round" + std::to_string(round));
        std::array<int, 2> report{};
        ASSERT_EQ(::pipe(report.data()), 0);
        std::vector<pid_t> copies;
        for (int n = 0; n < kCopies; ++n) {
            const auto copy = ::fork();
            if (copy == 0) {
                int none = 0;
                const std::array<char*, 1> arguments{nullptr};
                const QCoreApplication application(none, const_cast<char**>(arguments.data()));
                SingleInstance instance(roundFolder, ":0");
                const auto role = instance.claim();
                const char outcome = !role ? 'x' : role.value() == Role::first ? '1' : '2';
                (void)!::write(report[1], &outcome, 1);
                if (outcome == '1') {
                    instance.onRequest([] {});
                    QCoreApplication::exec();
                }
                ::_exit(0);
            }
            copies.push_back(copy);
        }
        std::string outcomes(kCopies, '?');
        for (auto& outcome : outcomes) {
            pollfd readable{report[0], POLLIN, 0};
            ASSERT_EQ(::poll(&readable, 1, 20000), 1);
            ASSERT_EQ(::read(report[0], &outcome, 1), 1);
        }
        for (const auto copy : copies) {
            ::kill(copy, SIGKILL);
            ::waitpid(copy, nullptr, 0);
        }
        ::close(report[0]);
        ::close(report[1]);
        EXPECT_EQ(std::count(outcomes.begin(), outcomes.end(), '1'), 1) << outcomes;
        EXPECT_EQ(std::count(outcomes.begin(), outcomes.end(), '2'), kCopies - 1) << outcomes;
    }
}

TEST_F(SingleInstanceTest, whenSomebodyConnectsAndSaysNothing_laterRequestsAreStillAnswered) {
    SingleInstance first(folder, ":0");
    ASSERT_EQ(first.claim().value(), Role::first);
    first.onRequest([] {});
    const auto silent = connectTo(":0");
    EXPECT_EQ(claimElsewhere(folder, ":0").value(), Role::second);
}

TEST_F(SingleInstanceTest, whenSomebodySpeaksLate_nobodyWaitsForItAndItIsAnsweredThen) {
    SingleInstance first(folder, ":0");
    ASSERT_EQ(first.claim().value(), Role::first);
    int requests = 0;
    first.onRequest([&] { ++requests; });
    const auto late = connectTo(":0");
    EXPECT_EQ(claimElsewhere(folder, ":0").value(), Role::second);
    ASSERT_EQ(requests, 1);
    ASSERT_EQ(::send(late.get(), "p", 1, MSG_NOSIGNAL), 1);
    EXPECT_TRUE(runUntil([&] { return requests == 2; }));
}

TEST_F(SingleInstanceTest, whenAFloodOfConnectionsSaysNothing_mostAreLetGoAndRequestsAreAnswered) {
    SingleInstance first(folder, ":0");
    ASSERT_EQ(first.claim().value(), Role::first);
    first.onRequest([] {});
    constexpr int kConnections = 200;
    std::vector<UnixFd> flood;
    for (int n = 0; n < kConnections; ++n) {
        flood.push_back(connectTo(":0"));
        runPendingEvents();
    }
    EXPECT_LT(openDescriptors(), kConnections + 100);
    EXPECT_EQ(claimElsewhere(folder, ":0").value(), Role::second);
}

TEST_F(SingleInstanceTest, whenTheFolderCannotBeMade_theErrorNamesIt) {
    writeFile(home / "file", "");
    SingleInstance instance(home / "file/folder", ":0");
    const auto claimed = instance.claim();
    ASSERT_FALSE(claimed);
    EXPECT_THAT(claimed.error().description, testing::EndsWith("/file: Not a directory"));
}

} // namespace
} // namespace tovik::test
