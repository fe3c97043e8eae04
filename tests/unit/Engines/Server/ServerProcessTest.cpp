// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Server/ServerProcess.h"

#include "unit/Engines/Server/SpeechServerFixture.h"

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>

namespace tovik::test {
namespace {

using testing::HasSubstr;

class ServerProcessTest : public testing::Test {
protected:
    void need(const std::vector<std::string>& command) {
        if (!process_) {
            process_.emplace(log_,
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

    [[nodiscard]] static bool isThere(pid_t process) { return ::kill(process, 0) == 0; }

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
    ASSERT_TRUE(comesTrue([this] { return starts() == 1; }));
    const auto running = process_->processId();
    EXPECT_TRUE(isThere(running));
    process_.reset();
    EXPECT_FALSE(isThere(running));
    EXPECT_EQ(starts(), 1U);
}

TEST_F(ServerProcessTest, whenItEnds_isStartedAnewAndSaysSo) {
    need(shell("echo started >> $0; exit 3"));
    ASSERT_TRUE(comesTrue([this] { return starts() >= 3; }));
    EXPECT_THAT(log_.logged(),
                testing::Contains(HasSubstr("/bin/sh ended with 3; it is started again after 10 ms")));
    EXPECT_THAT(log_.logged(), testing::Contains(HasSubstr("started again after 20 ms")));
}

TEST_F(ServerProcessTest, whenItCannotBeStarted_saysSoAndTriesAgain) {
    need({"/nowhere/whisper-server"});
    EXPECT_TRUE(comesTrue([this] { return log_.logged().size() >= 2; }));
    EXPECT_THAT(log_.logged().front(), HasSubstr("/nowhere/whisper-server cannot be started"));
}

TEST_F(ServerProcessTest, whenItHasStartedOthers_theyEndWithIt) {
    need(shell("sleep 1000 & echo $! >> $0; wait"));
    ASSERT_TRUE(comesTrue([this] { return starts() == 1; }));
    const auto grandchild = static_cast<pid_t>(std::stol(*readFile(folder_ / "out")));
    EXPECT_TRUE(isThere(grandchild));
    process_.reset();
    EXPECT_TRUE(comesTrue([&] { return hasEnded(std::to_string(grandchild)); }));
}

TEST_F(ServerProcessTest, whenItEndsByItself_thoseItHasStartedEndToo) {
    need(shell("sleep 1000 & echo $! >> $0; exit 3"));
    ASSERT_TRUE(comesTrue([this] { return starts() >= 2; }));
    const auto written = *readFile(folder_ / "out");
    EXPECT_TRUE(comesTrue([&] { return hasEnded(written.substr(0, written.find('\n'))); }));
}

TEST_F(ServerProcessTest, whenTheCommandChanges_theOldOneEnds) {
    need(shell("echo one >> $0; exec sleep 1000"));
    ASSERT_TRUE(comesTrue([this] { return starts() == 1; }));
    const auto first = process_->processId();
    need(shell("echo two >> $0; exec sleep 1001"));
    EXPECT_TRUE(comesTrue([&] { return starts() == 2 && !isThere(first); }));
    need({});
    EXPECT_TRUE(comesTrue([this] { return process_->processId() == 0; }));
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
    ASSERT_TRUE(comesTrue([this] { return starts() == 2; }));
    const auto written = *readFile(out);
    const std::string servers[] = {
        written.substr(0, written.find('\n')),
        written.substr(written.find('\n') + 1, written.rfind('\n') - written.find('\n') - 1)};
    ::kill(program, SIGKILL);
    ::waitpid(program, nullptr, 0);
    for (const auto& server : servers) {
        EXPECT_TRUE(comesTrue([&] { return hasEnded(server); })) << server;
    }
}

/// A server that is ours to run.
class OurSpeechServer : public SpeechServerFixture {
protected:
    /// Has the service run a program, as if that were the server, and gives its process.
    pid_t startServerOfOurs() {
        const auto out = folder_ / "process";
        defaults_.set("platform.speech.serverCommand",
                      {"/bin/sh", "-c", "echo $$ > $0.new; mv $0.new $0; exec sleep 1000", out});
        service().prepare({});
        EXPECT_TRUE(comesTrue([&] { return std::filesystem::exists(out); }));
        const auto process = static_cast<pid_t>(std::stol(readFile(out).value_or("0")));
        EXPECT_TRUE(process > 0 && ::kill(process, 0) == 0);
        return process;
    }
};

TEST_F(OurSpeechServer, whenTheServerIsOursToRun_startsItAndEndsItWithTheService) {
    const std::string started = folder_ / "started";
    defaults_.set("platform.speech.serverCommand", {"/bin/sh", "-c",
                                                    "echo $$ > " + started + ".new && mv " + started +
                                                        ".new " + started + " && exec sleep 600"});
    EXPECT_EQ(dictate(), "hello there");
    ASSERT_TRUE(comesTrue([&] { return std::filesystem::exists(started); }));
    pid_t process = 0;
    std::ifstream(started) >> process;
    ASSERT_EQ(::kill(process, 0), 0);
    tasks_.clear();
    service_.reset();
    EXPECT_NE(::kill(process, 0), 0);
}

TEST_F(OurSpeechServer, whileItLoadsItsModel_isAvailableAndTheDictationWaits) {
    std::atomic<bool> isLoaded{false};
    answerUploads([&](HttpExchange& exchange) { exchange.answerJson(isLoaded ? 200 : 503, kText); });
    startServerOfOurs();
    ASSERT_TRUE(server_.waitForRequests(2));
    EXPECT_EQ(service().whyUnavailable(), std::nullopt);
    const auto utterance = request();
    append(*utterance);
    utterance->endAudio();
    const auto answers = start(utterance);
    EXPECT_TRUE(comesTrue([this] { return !uploads().empty(); }));
    EXPECT_THAT(answers.all(), testing::IsEmpty());
    isLoaded = true;
    EXPECT_EQ(answers.waitForText(), "hello there");
}

TEST_F(OurSpeechServer, whenTheSettingsGo_aServerOfOursEnds) {
    const auto process = startServerOfOurs();
    defaults_.remove("platform.speech.serverUrl");
    EXPECT_EQ(service().makeRecognizer("en-US"), nullptr);
    EXPECT_TRUE(comesTrue([&] { return ::kill(process, 0) != 0; }));
}

TEST_F(OurSpeechServer, whenTheSettingsGoDuringADictation_aServerOfOursEndsAfterIt) {
    holdUploads();
    const auto process = startServerOfOurs();
    const auto utterance = request();
    append(*utterance);
    utterance->endAudio();
    const auto answers = start(utterance);
    ASSERT_TRUE(comesTrue([this] { return uploads().size() == 1; }));
    const auto recognizer = service().makeRecognizer("en-US");
    defaults_.remove("platform.speech.serverUrl");
    EXPECT_EQ(service().makeRecognizer("en-US"), nullptr);
    // Another dictation that comes to nothing does not end it either.
    const RecognitionAnswers later;
    const auto task = recognizer->startTask(request(), later.handler());
    EXPECT_THAT(later.waitForText(), HasSubstr("No speech server is set"));
    EXPECT_EQ(::kill(process, 0), 0);
    server_.release();
    EXPECT_EQ(answers.waitForText(), "hello there");
    EXPECT_TRUE(comesTrue([&] { return ::kill(process, 0) != 0; }));
}

TEST_F(OurSpeechServer, whenTheSettingsComeBackDuringADictation_aServerOfOursStays) {
    holdUploads();
    const auto process = startServerOfOurs();
    const auto first = request();
    append(*first);
    first->endAudio();
    const auto firstAnswers = start(first);
    ASSERT_TRUE(comesTrue([this] { return uploads().size() == 1; }));
    defaults_.remove("platform.speech.serverUrl");
    EXPECT_EQ(service().makeRecognizer("en-US"), nullptr);
    defaults_.set("platform.speech.serverUrl", server_.url());
    const auto second = request();
    append(*second);
    second->endAudio();
    const auto secondAnswers = start(second);
    server_.release();
    server_.release();
    EXPECT_EQ(firstAnswers.waitForText(), "hello there");
    EXPECT_EQ(secondAnswers.waitForText(), "hello there");
    EXPECT_EQ(dictate("en-US", 0), "<No speech detected>");
    EXPECT_EQ(::kill(process, 0), 0);
}

} // namespace
} // namespace tovik::test
