// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "ModelEngineFixture.h"

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tovik::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

class ModelProcessTest : public ModelEngineFixture {};

/// Of an engine whose program is put into its place while it runs.
class MissingProgram : public ModelProcessTest {
protected:
    MissingProgram() {
        limits_.longestPause = limits_.look;
        makeEngine({program_, script_.command().back()});
    }

    void install() { std::filesystem::create_symlink(TOVIK_TEST_ENGINE, program_); }

    const std::string program_ = folder_ / "engine";
};

TEST_F(MissingProgram, isNamed) {
    EXPECT_THAT(say(100).waitForText(), HasSubstr("Cannot start " + program_));
    EXPECT_THAT(engine_->whyUnavailable().value_or(""), HasSubstr("Cannot start " + program_));
}

TEST_F(MissingProgram, whenItTurnsUp_isStartedThoughTheModelIsTheSame) {
    ASSERT_THAT(say(100).waitForText(), HasSubstr("Cannot start " + program_));
    install();
    script_.waitUntilItDid("process ");
    EXPECT_EQ(say(100).waitForText(), "100 samples");
}

TEST_F(MissingProgram, whenItTurnsUpAndTheModelIsBroken_isNotStartedForEver) {
    ASSERT_THAT(say(100).waitForText(), HasSubstr("Cannot start " + program_));
    script_.order("load-fails");
    install();
    script_.waitUntilItDid("process ");
    EXPECT_EQ(say(100).waitForText(), "<The model is broken.>");
    std::this_thread::sleep_for(10 * limits_.look);
    EXPECT_EQ(script_.processes(), 1U);
}

TEST_F(ModelProcessTest, whenAModelThatWasGoodDoesNotLoad_itIsTriedAgainThoughItIsTheSame) {
    limits_.longestPause = limits_.look;
    makeReadyEngine();
    script_.order("load-fails");
    ::kill(script_.process(), SIGKILL);
    ScriptedEngine::waitUntil([this] { return engine_->whyUnavailable() == "The model is broken."; });
    script_.takeBack("load-fails");
    ScriptedEngine::waitUntil([this] { return !engine_->whyUnavailable(); });
    EXPECT_EQ(say(100).waitForText(), "100 samples");
}

/// A decoder that does not get through the loading of its model: the sentence for the user.
struct Loading {
    std::string deed;
    std::string says;
    std::size_t processes;

    friend void PrintTo(const Loading& row, std::ostream* out) { *out << row.deed; }
};

class BrokenModelEngine : public ModelProcessTest, public testing::WithParamInterface<Loading> {};

TEST_P(BrokenModelEngine, saysWhyAndIsNotLoadedForEver) {
    script_.order(GetParam().deed);
    script_.order("load-waits");
    makeEngine();
    const auto before = say(100);
    script_.takeBack("load-waits");
    EXPECT_EQ(before.waitForText(), "<" + GetParam().says + ">");
    EXPECT_EQ(say(100).waitForText(), "<" + GetParam().says + ">");
    EXPECT_EQ(engine_->whyUnavailable(), GetParam().says);
    EXPECT_FALSE(engine_->waitUntilReady(kLong));
    EXPECT_THAT(log_.logged(),
                ElementsAre("[TovikVoice] Speech recognition is not available: " + GetParam().says));
    std::this_thread::sleep_for(10 * limits_.look);
    EXPECT_EQ(script_.processes(), GetParam().processes);
}

TEST_P(BrokenModelEngine, whenMended_isLoadedAndUnavailableUntilThen) {
    script_.order(GetParam().deed);
    makeEngine();
    ASSERT_EQ(say(100).waitForText(), "<" + GetParam().says + ">");
    script_.order("load-waits");
    script_.takeBack(GetParam().deed);
    writeFile(model_, "mended");
    script_.waitUntilItDid("load waits");
    EXPECT_EQ(engine_->whyUnavailable(), GetParam().says);
    script_.takeBack("load-waits");
    EXPECT_EQ(say(100).waitForText(), "100 samples");
    EXPECT_EQ(engine_->whyUnavailable(), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, BrokenModelEngine,
    testing::Values(Loading{"load-fails", "The model is broken.", 1},
                    Loading{"load-crashes", "The model is not usable: the library breaks down over it.", 2}),
    [](const auto& row) { return row.param.deed.substr(5); });

TEST_F(ModelProcessTest, whileABrokenModelIsBeingUnpacked_waitsForTheEndOfThat) {
    script_.order("load-fails");
    makeEngine();
    ASSERT_EQ(say(100).waitForText(), "<The model is broken.>");
    for (std::string content; content.size() < 100; content += "more") {
        writeFile(model_, content);
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    EXPECT_EQ(script_.processes(), 1U);
    script_.takeBack("load-fails");
    writeFile(model_, "whole");
    script_.waitUntilItDid("process ", 2);
    EXPECT_EQ(say(100).waitForText(), "100 samples");
}

TEST_F(ModelProcessTest, whenTheFilesOfAGoodModelChange_loadsThemWhenNobodySpeaks) {
    makeReadyEngine();
    writeFile(model_, "another version");
    EXPECT_EQ(say(100).waitForText(), "100 samples");
    script_.waitUntilItDid("process ", 2);
    EXPECT_EQ(say(200).waitForText(), "200 samples");
}

/// What a library may do to the process that it is in.
class Breakdown : public ModelProcessTest, public testing::WithParamInterface<const char*> {};

TEST_P(Breakdown, isNotNoticedByTheOneWhoSpeaks) {
    script_.order(GetParam());
    makeReadyEngine();
    // In pieces, so that it happens in the middle.
    const auto request = makeRequest();
    const auto answers = start(request);
    for (int i = 0; i < 20; ++i) {
        append(*request, 4000);
    }
    request->endAudio();
    EXPECT_EQ(answers.waitForText(), "80000 samples");
    EXPECT_EQ(answers.all().size(), 1U);
    EXPECT_EQ(script_.processes(), 2U);
    EXPECT_THAT(log_.logged(), ElementsAre("[TovikVoice] Speech recognition broke down: it is started again"));
    EXPECT_EQ(say(100).waitForText(), "100 samples");
    EXPECT_EQ(script_.processes(), 2U);
}

INSTANTIATE_TEST_SUITE_P(Rows, Breakdown,
                         testing::Values("begin-crash", "sound-crash", "sound-exit", "sound-exhaust",
                                         "sound-rave", "finish-crash", "finish-exit"),
                         [](const auto& row) {
                             auto name = std::string(row.param);
                             name.erase(name.find('-'), 1);
                             return name;
                         });

TEST_F(ModelProcessTest, whenTheProcessDiesTwiceOverAnUtterance_answersWithAnErrorAndGoesOn) {
    script_.order("finish-crashes");
    makeReadyEngine();
    const auto answers = say(100);
    EXPECT_EQ(answers.waitForText(), "<The recognizer broke down>");
    EXPECT_EQ(answers.all().size(), 1U);
    script_.takeBack("finish-crashes");
    EXPECT_EQ(say(200).waitForText(), "200 samples");
    EXPECT_EQ(script_.processes(), 3U);
}

TEST_F(ModelProcessTest, whenTheLibraryFloodsStandardOutput_hearsNothingOfIt) {
    script_.order("sound-flood");
    makeReadyEngine();
    EXPECT_EQ(say(100).waitForText(), "100 samples");
    EXPECT_EQ(script_.processes(), 1U);
}

TEST_F(ModelProcessTest, whenTheProcessDiesBetweenUtterances_anotherIsReadyForTheNextOne) {
    makeEngine();
    engine_->prepare({"Tovik"});
    ASSERT_TRUE(engine_->waitUntilReady(kLong));
    ::kill(script_.process(), SIGKILL);
    script_.waitUntilItDid("learn Tovik", 2);
    EXPECT_EQ(say(100).waitForText(), "100 samples");
    script_.order("after-crash");
    EXPECT_EQ(say(100).waitForText(), "100 samples");
    script_.waitUntilItDid("process ", 3);
    EXPECT_EQ(say(200).waitForText(), "200 samples");
}

TEST_F(ModelProcessTest, whenProcessesDieAgainAndAgain_theyAreReplacedMoreAndMoreSeldom) {
    limits_.pause = kLong;
    makeReadyEngine();
    ::kill(script_.process(), SIGKILL);
    script_.waitUntilItDid("process ", 2);
    ASSERT_TRUE(engine_->waitUntilReady(kLong));
    ::kill(script_.process(), SIGKILL);
    ScriptedEngine::waitUntil([this] { return !engine_->waitUntilReady(Seconds(0)); });
    EXPECT_FALSE(engine_->waitUntilReady(Seconds(0.1)));
    EXPECT_EQ(script_.processes(), 2U);
    // But nobody who speaks has to wait.
    EXPECT_EQ(say(100).waitForText(), "100 samples");
}

TEST_F(ModelProcessTest, whenTheDecoderHangs_aFreshOneHearsTheUtterance) {
    script_.order("finish-hang");
    makeEngine();
    engine_->prepare({"Tovik"});
    ASSERT_TRUE(engine_->waitUntilReady(kLong));
    const auto hanging = say(100);
    const auto waiting = say(200);
    script_.waitUntilItDid("finish hangs");
    const auto process = script_.process();
    passTimeUntil([&] { return script_.processes() == 2; });
    EXPECT_EQ(hanging.waitForText(), "100 samples");
    EXPECT_EQ(waiting.waitForText(), "200 samples");
    EXPECT_EQ(hanging.all().size(), 1U);
    EXPECT_EQ(script_.processes(), 2U);
    EXPECT_NE(::kill(process, 0), 0);
    EXPECT_THAT(log_.logged(),
                Contains("[TovikVoice] Speech recognition does not answer: it is started again"));
    ASSERT_TRUE(engine_->waitUntilReady(kLong));
    EXPECT_THAT(script_.did("learn"), ElementsAre("learn Tovik", "learn Tovik"));
}

TEST_F(ModelProcessTest, whenAFreshDecoderHangsAsWell_answersWithAnErrorAndGoesOn) {
    script_.order("finish-hangs");
    makeReadyEngine();
    const auto hanging = say(100);
    script_.waitUntilItDid("finish hangs");
    passTimeUntil([&] { return script_.processes() == 2; });
    script_.waitUntilItDid("finish hangs", 2);
    script_.takeBack("finish-hangs");
    passTimeUntil([&] { return !hanging.all().empty(); });
    EXPECT_EQ(hanging.waitForText(), "<The recognizer does not answer>");
    EXPECT_EQ(say(200).waitForText(), "200 samples");
}

TEST_F(ModelProcessTest, whenEverythingWasStoppedForAWhile_theDecoderGetsTimeToGoOn) {
    script_.order("finish-waits");
    // The first look after the stop finds the decoder silent for long; by the next it has moved.
    std::atomic<bool> wasStopped = false;
    std::atomic<int> looks = 0;
    limits_.clock = [&] {
        ++looks;
        return std::chrono::steady_clock::time_point(
            std::chrono::minutes(wasStopped.exchange(false) ? 2 : 0));
    };
    makeReadyEngine();
    const auto answers = say(100);
    script_.waitUntilItDid("finish waits");
    wasStopped = true;
    ScriptedEngine::waitUntil([&, before = looks.load()] { return looks >= before + 4; });
    script_.takeBack("finish-waits");
    EXPECT_EQ(answers.waitForText(), "100 samples");
    EXPECT_EQ(script_.processes(), 1U);
    engine_.reset();
}

TEST_F(ModelProcessTest, whenTheModelDoesNotLoad_itIsLoadedAnewAndWhatWasSaidIsRecognized) {
    limits_.loading = Seconds(600);
    script_.order("load-hang");
    makeEngine();
    const auto waiting = say(100);
    script_.waitUntilItDid("load hangs");
    // Long for a decoder, not for a model on a slow disk.
    *time_ = std::chrono::minutes(9);
    EXPECT_FALSE(engine_->waitUntilReady(Seconds(0.1)));
    EXPECT_EQ(script_.processes(), 1U);
    passTimeUntil([&] { return script_.processes() == 2; });
    EXPECT_EQ(waiting.waitForText(), "100 samples");
    EXPECT_EQ(waiting.all().size(), 1U);
    EXPECT_EQ(script_.processes(), 2U);
}

TEST_F(ModelProcessTest, whenTheModelNeverLoads_saysSo) {
    limits_.loading = Seconds(600);
    script_.order("load-hangs");
    makeEngine();
    const auto waiting = say(100);
    script_.waitUntilItDid("load hangs");
    passTimeUntil([&] { return script_.processes() == 2; });
    script_.waitUntilItDid("load hangs", 2);
    passTimeUntil([&] { return !waiting.all().empty(); });
    EXPECT_EQ(waiting.waitForText(), "<The model is not usable: the library does not come back from it.>");
    EXPECT_EQ(script_.processes(), 2U);
}

TEST_F(ModelProcessTest, whenThisProgramDies_itsProcessDiesEvenIfItHangs) {
    script_.order("load-hang");
    const auto program = ::fork();
    if (program == 0) {
        makeEngine();
        ::pause();
        ::_exit(0);
    }
    script_.waitUntilItDid("load hangs");
    const auto status = "/proc/" + std::to_string(script_.process()) + "/stat";
    EXPECT_TRUE(readFile(status));
    ::kill(program, SIGKILL);
    ::waitpid(program, nullptr, 0);
    // Whoever inherits an ended process collects it in his own time.
    ScriptedEngine::waitUntil(
        [&] { return readFile(status).value_or(") Z").find(") Z") != std::string::npos; });
}

struct Change {
    std::string name;
    std::function<void(const std::string& folder)> make;
    bool isSeen;

    friend void PrintTo(const Change& row, std::ostream* out) { *out << row.name; }
};

class FileStamps : public testing::TestWithParam<Change> {};

TEST_P(FileStamps, tellChanges) {
    namespace fs = std::filesystem;
    const TemporaryFolder folder;
    fs::create_directories(folder / "model/am");
    writeFile(folder / "model/am/final.mdl", "half");
    writeFile(folder / "model/words", "words");
    const auto places = std::vector<fs::path>{folder / "model", folder / "dictionary"};
    const auto before = fileStamp(places);
    GetParam().make(folder / "");
    EXPECT_EQ(fileStamp(places) != before, GetParam().isSeen);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, FileStamps,
    testing::Values(
        Change{"None", [](const std::string&) {}, false},
        Change{"Grows",
               [](const std::string& folder) { writeFile(folder + "model/am/final.mdl", "whole now"); },
               true},
        Change{"Comes", [](const std::string& folder) { writeFile(folder + "dictionary", ""); }, true},
        Change{"ComesBelow", [](const std::string& folder) { writeFile(folder + "model/am/other", ""); },
               true},
        Change{"Goes", [](const std::string& folder) { std::filesystem::remove(folder + "model/words"); },
               true},
        Change{"Dated",
               [](const std::string& folder) {
                   std::filesystem::last_write_time(folder + "model/words",
                                                    std::filesystem::file_time_type(std::chrono::hours(1)));
               },
               true},
        Change{"Elsewhere", [](const std::string& folder) { writeFile(folder + "notes", "x"); }, false}),
    [](const auto& row) { return row.param.name; });

} // namespace
} // namespace tovik::test
