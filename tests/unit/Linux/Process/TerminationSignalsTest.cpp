// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/ProgramEnd.h"
#include "support/EventLoop.h"

#include <QCoreApplication>

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <thread>

namespace tovik::test {
namespace {

class TerminationSignalsTest : public testing::TestWithParam<int> {};

TEST_P(TerminationSignalsTest, whenTheSignalArrives_theHandlerRunsOnTheMainThreadAndTheProgramGoesOn) {
    const auto mainThread = std::this_thread::get_id();
    int count = 0;
    {
        const TerminationSignals watch([&] {
            EXPECT_EQ(std::this_thread::get_id(), mainThread);
            ++count;
        });
        ASSERT_EQ(::raise(GetParam()), 0);
        EXPECT_EQ(count, 0);
        EXPECT_TRUE(runUntil([&] { return count == 1; }));
    }
    EXPECT_EQ(count, 1);
}

TEST_P(TerminationSignalsTest, whenTheSignalArrivesInAnotherThread_theHandlerStillRunsOnTheMainThread) {
    const auto mainThread = std::this_thread::get_id();
    int count = 0;
    const TerminationSignals watch([&] {
        EXPECT_EQ(std::this_thread::get_id(), mainThread);
        ++count;
    });
    std::thread([] { ::raise(GetParam()); }).join();
    EXPECT_TRUE(runUntil([&] { return count == 1; }));
}

/// What a child does that keeps its event loop from running, and how it ends.
int endOfHangingChild(const std::vector<int>& sent) {
    const auto child = ::fork();
    if (child == 0) {
        const TerminationSignals watch([] {});
        for (const int signal : sent) {
            ::raise(signal);
        }
        ::_exit(7);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return status;
}

TEST_P(TerminationSignalsTest, whenTheProgramHangs_theSecondSignalEndsIt) {
    const auto once = endOfHangingChild({GetParam()});
    EXPECT_TRUE(WIFEXITED(once));
    const auto twice = endOfHangingChild({GetParam(), GetParam()});
    if (GetParam() == SIGHUP) {
        EXPECT_TRUE(WIFEXITED(twice));
        return;
    }
    ASSERT_TRUE(WIFSIGNALED(twice));
    EXPECT_EQ(WTERMSIG(twice), GetParam());
}

TEST_P(TerminationSignalsTest, aHangUpAfterIt_saysNothingNew) {
    int count = 0;
    {
        const TerminationSignals watch([&] { ++count; });
        ::raise(GetParam());
        EXPECT_TRUE(runUntil([&] { return count == 1; }));
        ::raise(SIGHUP);
        runPendingEvents();
    }
    EXPECT_EQ(count, 1);
}

TEST_P(TerminationSignalsTest, whenTheProgramWasStartedToIgnoreTheSignal_itStillDoes) {
    const auto before = ::signal(GetParam(), SIG_IGN);
    int count = 0;
    {
        const TerminationSignals watch([&] { ++count; });
        ::raise(GetParam());
        runPendingEvents();
    }
    ::signal(GetParam(), before);
    EXPECT_EQ(count, 0);
}

TEST_P(TerminationSignalsTest, whenTheObjectIsGone_theSignalEndsTheProgramAgain) {
    const auto child = ::fork();
    if (child == 0) {
        {
            const TerminationSignals watch([] {});
        }
        ::raise(GetParam());
        ::_exit(7);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status));
}

INSTANTIATE_TEST_SUITE_P(Signals, TerminationSignalsTest, testing::Values(SIGTERM, SIGINT, SIGHUP),
                         [](const auto& row) { return std::string(::sigabbrev_np(row.param)); });

} // namespace
} // namespace tovik::test
