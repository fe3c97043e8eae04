// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "unit/Engines/Server/SpeechServerFixture.h"

#include <gmock/gmock.h>
#include <signal.h>

#include <fstream>

namespace tovik::test {
namespace {

using testing::HasSubstr;

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
    // The server's thread does one thing after the other: this comes after the wish that the server end.
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
