// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/QtDesktop.h"
#include "Platform/Posix.h"
#include "support/TemporaryFolder.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <sstream>

namespace tovik::test {
namespace {

/// Runs a shell line through the launcher and waits for all it writes to standard output.
class QtProcessLauncherTest : public testing::Test {
protected:
    std::string outputOf(const std::string& line, const std::vector<std::string>& arguments = {}) {
        const auto pipe = folder / "pipe";
        EXPECT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
        std::vector<std::string> all{"-c", "exec > " + pipe + "; " + line, "sh"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const auto launched = launcher.launch("sh", all);
        EXPECT_TRUE(launched);
        // Opening waits for the program, reading for its end.
        return readFile(pipe).value_or("");
    }

    TemporaryFolder folder;
    QtProcessLauncher launcher;
};

TEST_F(QtProcessLauncherTest, whenAProgramIsStarted_itGetsItsArgumentsAsTheyStand) {
    EXPECT_EQ(outputOf("printf '%s|' \"$@\"", {"a b", "", "$HOME", "ü\n"}), "a b||$HOME|ü\n|");
}

TEST_F(QtProcessLauncherTest, whenAProgramIsStarted_itIsInASessionOfItsOwnAndNoChildOfOurs) {
    std::istringstream ids(outputOf("cut -d ' ' -f 4,6 /proc/$$/stat"));
    pid_t parent = 0;
    pid_t session = 0;
    ASSERT_TRUE(ids >> parent >> session);
    EXPECT_NE(parent, ::getpid());
    EXPECT_NE(session, ::getsid(0));
    // There is no child to wait for, now or when the program ends.
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST_F(QtProcessLauncherTest, whenSignalsAreBlockedHere_theProgramStillReceivesThem) {
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    ASSERT_EQ(::pthread_sigmask(SIG_BLOCK, &blocked, &before), 0);
    const auto handler = ::signal(SIGPIPE, SIG_IGN);
    const auto state = outputOf("exec grep -E 'SigBlk|SigIgn' /proc/self/status");
    ::signal(SIGPIPE, handler);
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    EXPECT_THAT(state, testing::HasSubstr("SigBlk:\t0000000000000000\n"));
    EXPECT_THAT(state, testing::HasSubstr("SigIgn:\t0000000000000000\n"));
}

TEST_F(QtProcessLauncherTest, whenFilesAreOpenHere_theProgramDoesNotInheritThem) {
    const UnixFd open(::open("/dev/zero", O_RDONLY));
    ASSERT_TRUE(open);
    EXPECT_EQ(outputOf("readlink /proc/$$/fd/* | grep -c /dev/zero"), "0\n");
}

TEST_F(QtProcessLauncherTest, whenThereIsNoSuchProgram_theErrorSaysSo) {
    for (const std::string name : {"no-such-program-of-ours", "/nowhere/at/all"}) {
        const auto launched = launcher.launch(name, {});
        ASSERT_FALSE(launched);
        EXPECT_THAT(launched.error().description, testing::StartsWith("Cannot start " + name + ": "));
        EXPECT_THAT(launched.error().description, testing::EndsWith("No such file or directory"));
    }
}

TEST_F(QtProcessLauncherTest, whenTheFileIsNoProgram_theErrorSaysSo) {
    writeFile(folder / "text", "no program");
    const auto launched = launcher.launch(folder / "text", {});
    ASSERT_FALSE(launched);
    EXPECT_THAT(launched.error().description, testing::EndsWith("Permission denied"));
}

} // namespace
} // namespace tovik::test
