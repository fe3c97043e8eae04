// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Server/ServerProcess.h"

#include "support/EventLoop.h"
#include "support/RecordingLog.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <optional>

namespace tovik::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class ServerProcessTest : public testing::Test {
protected:
    void need(const std::vector<std::string>& command) {
        if (!process_) {
            process_.emplace(std::make_shared<SharedLog>(log_),
                             ServerProcess::Pauses{Seconds(0.01), Seconds(0.02), Seconds(60), Seconds(5)});
        }
        process_->need(command);
    }

    /// A shell that writes what it is told and then sleeps for good.
    [[nodiscard]] std::vector<std::string> shell(const std::string& script) const {
        return {"/bin/sh", "-c", script, folder_ / "out"};
    }

    [[nodiscard]] std::size_t starts() const {
        const auto written = readFile(folder_ / "out").value_or("");
        return static_cast<std::size_t>(std::count(written.begin(), written.end(), '\n'));
    }

    [[nodiscard]] static bool isThere(qint64 process) { return ::kill(static_cast<pid_t>(process), 0) == 0; }

    /// Whoever inherits an ended process collects it in his own time.
    [[nodiscard]] static bool hasEnded(const std::string& process) {
        const auto status = readFile("/proc/" + process + "/stat").value_or(") Z");
        return status.find(") Z") != std::string::npos;
    }

    const TemporaryFolder folder_;
    RecordingLog log_;
    std::optional<ServerProcess> process_;
};

TEST_F(ServerProcessTest, whenNeeded_runsOnceAndEndsWithItsOwner) {
    need(shell("echo started >> $0; exec sleep 1000"));
    need(shell("echo started >> $0; exec sleep 1000"));
    ASSERT_TRUE(runUntil([this] { return starts() == 1; }));
    const auto running = process_->processIdentifier();
    EXPECT_TRUE(isThere(running));
    process_.reset();
    EXPECT_FALSE(isThere(running));
    EXPECT_EQ(starts(), 1U);
}

TEST_F(ServerProcessTest, whenItEnds_isStartedAnewAndSaysSo) {
    need(shell("echo started >> $0; exit 3"));
    ASSERT_TRUE(runUntil([this] { return starts() >= 3; }));
    EXPECT_THAT(log_.logged(),
                testing::Contains(HasSubstr("/bin/sh ended with 3; it is started anew after 10 ms")));
    EXPECT_THAT(log_.logged(), testing::Contains(HasSubstr("started anew after 20 ms")));
}

TEST_F(ServerProcessTest, whenItCannotBeStarted_saysSoAndTriesAgain) {
    need({"/nowhere/whisper-server"});
    EXPECT_TRUE(runUntil([this] { return log_.logged().size() >= 2; }));
    EXPECT_THAT(log_.logged().front(), HasSubstr("/nowhere/whisper-server cannot be started"));
}

TEST_F(ServerProcessTest, whenItHasStartedOthers_theyEndWithIt) {
    need(shell("sleep 1000 & echo $! >> $0; wait"));
    ASSERT_TRUE(runUntil([this] { return starts() == 1; }));
    const auto grandchild = std::stol(*readFile(folder_ / "out"));
    EXPECT_TRUE(isThere(grandchild));
    process_.reset();
    EXPECT_TRUE(runUntil([&] { return hasEnded(std::to_string(grandchild)); }));
}

TEST_F(ServerProcessTest, whenItEndsByItself_thoseItHasStartedEndToo) {
    need(shell("sleep 1000 & echo $! >> $0; exit 3"));
    ASSERT_TRUE(runUntil([this] { return starts() >= 2; }));
    const auto written = *readFile(folder_ / "out");
    EXPECT_TRUE(runUntil([&] { return hasEnded(written.substr(0, written.find('\n'))); }));
}

TEST_F(ServerProcessTest, whenTheCommandChanges_theOldOneEnds) {
    need(shell("echo one >> $0; exec sleep 1000"));
    ASSERT_TRUE(runUntil([this] { return starts() == 1; }));
    const auto first = process_->processIdentifier();
    need(shell("echo two >> $0; exec sleep 1001"));
    EXPECT_FALSE(isThere(first));
    EXPECT_TRUE(runUntil([this] { return starts() == 2; }));
    need({});
    EXPECT_EQ(process_->processIdentifier(), 0);
}

TEST_F(ServerProcessTest, whenTheProgramIsKilled_theServerEndsToo) {
    const auto out = folder_ / "out";
    const auto program = ::fork();
    ASSERT_GE(program, 0);
    if (program == 0) {
        // A script, and the server that it starts.
        need(shell("echo $$ >> $0; sleep 1000 & echo $! >> $0; wait"));
        ::pause();
        ::_exit(0);
    }
    ASSERT_TRUE(runUntil([this] { return starts() == 2; }));
    const auto written = *readFile(out);
    const std::string servers[] = {
        written.substr(0, written.find('\n')),
        written.substr(written.find('\n') + 1, written.rfind('\n') - written.find('\n') - 1)};
    ::kill(program, SIGKILL);
    ::waitpid(program, nullptr, 0);
    for (const auto& server : servers) {
        EXPECT_TRUE(runUntil([&] { return hasEnded(server); })) << server;
    }
}

} // namespace
} // namespace tovik::test
