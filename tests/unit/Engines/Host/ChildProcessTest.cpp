// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/ChildProcess.h"

#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

namespace tovik::test {
namespace {

using testing::HasSubstr;

constexpr Seconds kLong{60};

std::unique_ptr<ChildProcess> startShell(const std::string& script, ChildProcess::Program program = {}) {
    program.command = {"/bin/sh", "-c", script};
    auto started = ChildProcess::start(std::move(program));
    return started ? std::move(started.value()) : nullptr;
}

/// All that the program writes until it closes its output.
std::string readAll(ChildProcess& process) {
    std::string text;
    pollfd watched{process.output().get(), POLLIN, 0};
    while (::poll(&watched, 1, 60000) == 1 && process.read(text)) {
    }
    return text;
}

bool comesTrue(const std::function<bool()>& condition) {
    for (const auto end = std::chrono::steady_clock::now() + kLong; std::chrono::steady_clock::now() < end;) {
        if (condition()) {
            return true;
        }
        std::this_thread::yield();
    }
    return false;
}

/// Whoever inherits an ended process collects it in his own time.
bool hasGone(const std::string& process) {
    return readFile("/proc/" + process + "/stat").value_or(") Z").find(") Z") != std::string::npos;
}

TEST(ChildProcess, readsWhatWeWriteAndTellsWhatItWrites) {
    const auto cat = startShell("cat", {.hasInput = true, .hasOutput = true});
    ASSERT_NE(cat, nullptr);
    EXPECT_EQ(cat->write("hello"), 5U);
    cat->input().reset();
    EXPECT_EQ(readAll(*cat), "hello");
    EXPECT_EQ(cat->waitForEnd(kLong), 0);
}

TEST(ChildProcess, whenTheProgramDoesNotExist_isAnError) {
    const auto started = ChildProcess::start({.command = {"/nowhere/program"}});
    ASSERT_FALSE(started.ok());
    EXPECT_EQ(started.error().description, "Cannot start /nowhere/program: No such file or directory");
}

TEST(ChildProcess, hasNoFilesOfOursAndNoEnvironmentButWhatItIsGiven) {
    const auto shell = startShell("echo $TOVIK_WORD $(ls /proc/self/fd | wc -l)",
                                  {.hasOutput = true, .environment = {"TOVIK_WORD=word"}});
    ASSERT_NE(shell, nullptr);
    // The three standard ones, and that of the listing itself.
    EXPECT_EQ(readAll(*shell), "word 4\n");
}

TEST(ChildProcess, canReadTheOutputOfAnother) {
    const auto first = startShell("echo one two", {.hasOutput = true});
    ASSERT_NE(first, nullptr);
    const auto second = startShell("wc -w", {.hasOutput = true, .input = std::move(first->output())});
    ASSERT_NE(second, nullptr);
    EXPECT_THAT(readAll(*second), HasSubstr("2"));
}

TEST(ChildProcess, whenTheProgramReadsNoMore_writingSaysSoAndNoSignalComes) {
    const auto shell = startShell("exit 3", {.hasInput = true});
    ASSERT_NE(shell, nullptr);
    const auto status = shell->waitForEnd(kLong);
    ASSERT_TRUE(status);
    EXPECT_EQ(WEXITSTATUS(*status), 3);
    EXPECT_EQ(shell->write("hello"), std::nullopt);
}

TEST(ChildProcess, whenTheProgramDoesNotRead_writingNeverBlocks) {
    const auto sleeper = startShell("sleep 1000", {.hasInput = true});
    ASSERT_NE(sleeper, nullptr);
    const std::string much(1 << 20, 'x');
    std::size_t taken = 0;
    for (std::optional<std::size_t> some = 1; some.value_or(0) > 0; taken += *some) {
        some = sleeper->write(much);
        ASSERT_TRUE(some);
    }
    EXPECT_GT(taken, 0U);
}

TEST(ChildProcess, tellsItsEndToThoseWhoPoll) {
    const auto shell = startShell("read -r _", {.hasInput = true});
    ASSERT_NE(shell, nullptr);
    pollfd watched{shell->endSignal(), POLLIN, 0};
    EXPECT_EQ(::poll(&watched, 1, 0), 0);
    EXPECT_EQ(shell->ended(), std::nullopt);
    shell->input().reset();
    EXPECT_EQ(::poll(&watched, 1, 60000), 1);
    EXPECT_TRUE(shell->ended());
}

TEST(ChildProcess, whenThisProcessIgnoresTheEndOfItsChildren_endingIsNoEndlessWait) {
    const auto before = ::signal(SIGCHLD, SIG_IGN);
    const auto shell = startShell("exit 0");
    ASSERT_NE(shell, nullptr);
    EXPECT_TRUE(shell->waitForEnd(kLong).has_value());
    EXPECT_NE(shell->end(Seconds(0)), 0);
    ::signal(SIGCHLD, before);
}

TEST(ChildProcess, whenItIgnoresTheRequestToEnd_isKilledAfterTheGrace) {
    const auto stubborn =
        startShell("trap '' TERM; echo ready; while :; do sleep 1000; done", {.hasOutput = true});
    ASSERT_NE(stubborn, nullptr);
    pollfd watched{stubborn->output().get(), POLLIN, 0};
    ASSERT_EQ(::poll(&watched, 1, 60000), 1);
    const int status = stubborn->end(Seconds(0.05));
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
}

TEST(ChildProcess, whenAskedToEndInTime_endsByItself) {
    const auto polite =
        startShell("trap 'exit 7' TERM; echo ready; while :; do sleep 0.01; done", {.hasOutput = true});
    ASSERT_NE(polite, nullptr);
    pollfd watched{polite->output().get(), POLLIN, 0};
    ASSERT_EQ(::poll(&watched, 1, 60000), 1);
    const int status = polite->end(kLong);
    EXPECT_EQ(WEXITSTATUS(status), 7);
}

TEST(ChildProcess, whatItHasStartedEndsWithIt) {
    const TemporaryFolder folder;
    const auto file = folder / "started";
    const auto shell =
        startShell("sleep 1000 & echo $! > " + file + ".new; mv " + file + ".new " + file + "; exit 0");
    ASSERT_NE(shell, nullptr);
    ASSERT_TRUE(shell->waitForEnd(kLong));
    auto process = readFile(file).value_or("0\n");
    process.pop_back();
    EXPECT_TRUE(comesTrue([&] { return hasGone(process); }));
}

TEST(ChildProcess, whenThisProcessDies_oneThatOutlivesNothingEndsToo) {
    const TemporaryFolder folder;
    const auto file = folder / "started";
    const auto parent = ::fork();
    if (parent == 0) {
        const auto shell =
            startShell("echo $$ > " + file + ".new; mv " + file + ".new " + file + "; sleep 1000; true",
                       {.outlivesNothing = true});
        ::pause();
        ::_exit(0);
    }
    EXPECT_TRUE(comesTrue([&] { return readFile(file).has_value(); }));
    ::kill(parent, SIGKILL);
    ::waitpid(parent, nullptr, 0);
    auto process = readFile(file).value_or("0\n");
    process.pop_back();
    EXPECT_TRUE(comesTrue([&] { return hasGone(process); }));
}

} // namespace
} // namespace tovik::test
