// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// The engine's side of the real process, in which a decoder does what a test orders.
#include "Engines/Host/ModelEngine.h"

#include "Audio/RecognitionRequest.h"
#include "ScriptedEngine.h"
#include "support/RecognitionAnswers.h"
#include "support/RecordingLog.h"

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>

namespace tovik::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr double kRate = 16000;
constexpr Seconds kLong{60};

class ModelEngineTest : public testing::Test {
protected:
    ModelEngineTest() {
        limits_.silence = kLong;
        limits_.loading = std::chrono::hours(1000);
        limits_.look = Seconds(0.02);
        limits_.pause = Seconds(0.02);
        limits_.clock = [time = time_] { return std::chrono::steady_clock::time_point(time->load()); };
        writeFile(model_, "good");
    }

    void makeEngine() {
        engine_ = std::make_shared<ModelEngine>(
            log_,
            ModelEngine::Model{
                .check = [this] { return filesThere_ ? Result<void>() : Result<void>(kMissing); },
                .command = script_.command(),
                .files = {model_},
                .unusable =
                    [](const std::string& how) {
                        return Error{"SpeechRecognition", 2, "The model is not usable: " + how + "."};
                    }},
            limits_);
    }

    static std::shared_ptr<RecognitionRequest> makeRequest(std::vector<std::string> contextualStrings = {}) {
        RecognitionSettings settings;
        settings.contextualStrings = std::move(contextualStrings);
        return std::make_shared<RecognitionRequest>(std::move(settings), kRate);
    }

    /// Starts a task on the request; the answers tell what becomes of it.
    RecognitionAnswers start(const std::shared_ptr<RecognitionRequest>& request) {
        const RecognitionAnswers answers;
        tasks_.push_back(engine_->makeRecognizer()->startTask(request, answers.handler()));
        return answers;
    }

    static void append(RecognitionRequest& request, std::size_t frames) {
        const std::vector<float> sound(frames, 0.1F);
        request.append({sound, kRate});
    }

    /// A whole utterance of that many frames.
    RecognitionAnswers say(std::size_t frames) {
        const auto request = makeRequest();
        append(*request, frames);
        request->endAudio();
        return start(request);
    }

    void makeReadyEngine() {
        makeEngine();
        ASSERT_TRUE(engine_->waitUntilReady(kLong));
    }

    /// Lets a silence go by, and another one should the process have given a sign of life in between.
    void passTimeUntil(const std::function<bool()>& condition) {
        auto nextJump = std::chrono::steady_clock::now();
        ScriptedEngine::waitUntil([&] {
            if (std::chrono::steady_clock::now() >= nextJump) {
                *time_ = time_->load() + std::chrono::minutes(12);
                nextJump = std::chrono::steady_clock::now() + std::chrono::seconds(5);
            }
            return condition();
        });
    }

    inline static const Error kMissing{"SpeechRecognition", 2, "The model is missing. Install it."};

    const TemporaryFolder folder_;
    const std::string model_ = folder_ / "model";
    const ScriptedEngine script_;
    /// The time as the engine knows it; stands still.
    const std::shared_ptr<std::atomic<std::chrono::steady_clock::duration>> time_ =
        std::make_shared<std::atomic<std::chrono::steady_clock::duration>>();
    RecordingLog log_;
    std::atomic<bool> filesThere_{true};
    ModelEngine::Limits limits_;
    std::shared_ptr<ModelEngine> engine_;
    std::vector<std::unique_ptr<RecognitionTask>> tasks_;
};

TEST_F(ModelEngineTest, whileTheModelLoads_isAvailableAndLosesNoSound) {
    script_.order("load-waits");
    makeEngine();
    script_.waitUntilItDid("load waits");
    EXPECT_EQ(engine_->whyUnavailable(), std::nullopt);
    const auto answers = say(5000);
    script_.takeBack("load-waits");
    EXPECT_EQ(answers.waitForText(), "5000 samples");
}

TEST_F(ModelEngineTest, whenTheFilesAreMissing_saysWhyAndLogsIt) {
    filesThere_ = false;
    makeEngine();
    EXPECT_EQ(engine_->whyUnavailable(), kMissing.description);
    EXPECT_FALSE(engine_->makeRecognizer()->isAvailable());
    EXPECT_THAT(
        log_.logged(),
        ElementsAre("[TovikVoice] Speech recognition is not available: The model is missing. Install it."));
    EXPECT_THAT(log_.printed(), IsEmpty());
}

TEST_F(ModelEngineTest, whenTheFilesAreMissing_answersWithTheReason) {
    filesThere_ = false;
    makeEngine();
    EXPECT_EQ(say(100).waitForText(), "<The model is missing. Install it.>");
    EXPECT_FALSE(engine_->waitUntilReady(Seconds(0)));
}

TEST_F(ModelEngineTest, whenTheFilesTurnUpLater_recognises) {
    filesThere_ = false;
    makeEngine();
    ASSERT_TRUE(engine_->whyUnavailable());
    filesThere_ = true;
    EXPECT_EQ(engine_->whyUnavailable(), std::nullopt);
    EXPECT_EQ(say(100).waitForText(), "100 samples");
}

TEST_F(ModelEngineTest, whenTheProgramIsMissing_saysSo) {
    engine_ =
        std::make_shared<ModelEngine>(log_,
                                      ModelEngine::Model{.check = [] { return Result<void>(); },
                                                         .command = {"/nowhere/tovik-engine"},
                                                         .files = {},
                                                         .unusable = [](const auto&) { return kMissing; }},
                                      limits_);
    EXPECT_THAT(say(100).waitForText(), HasSubstr("Cannot start /nowhere/tovik-engine"));
    EXPECT_THAT(engine_->whyUnavailable().value_or(""), HasSubstr("Cannot start /nowhere/tovik-engine"));
}

/// A decoder that does not get through the loading of its model: the sentence for the user.
struct Loading {
    std::string deed;
    std::string says;
    std::size_t processes;

    friend void PrintTo(const Loading& row, std::ostream* out) { *out << row.deed; }
};

class BrokenModelEngine : public ModelEngineTest, public testing::WithParamInterface<Loading> {};

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

TEST_F(ModelEngineTest, whileABrokenModelIsBeingUnpacked_waitsForTheEndOfThat) {
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

TEST_F(ModelEngineTest, whenTheFilesOfAGoodModelChange_loadsThemWhenNobodySpeaks) {
    makeReadyEngine();
    writeFile(model_, "another version");
    EXPECT_EQ(say(100).waitForText(), "100 samples");
    script_.waitUntilItDid("process ", 2);
    EXPECT_EQ(say(200).waitForText(), "200 samples");
}

TEST_F(ModelEngineTest, handsTheContextualStringsToTheDecoder) {
    makeEngine();
    const auto request = makeRequest({"Tovik", "Zoom"});
    request->endAudio();
    ASSERT_TRUE(start(request).waitForEnd());
    EXPECT_THAT(script_.did("begin"), ElementsAre("begin Tovik Zoom"));
}

TEST_F(ModelEngineTest, whenPreparedForWords_theDecoderLearnsThemBeforeAnybodySpeaks) {
    makeEngine();
    engine_->prepare({"Tovik", "Zoom"});
    ASSERT_TRUE(engine_->waitUntilReady(kLong));
    EXPECT_THAT(script_.did("learn"), ElementsAre("learn Tovik Zoom"));
    EXPECT_THAT(script_.did("begin"), IsEmpty());
}

TEST_F(ModelEngineTest, whenPreparedWhileTheModelLoads_learnsOnlyTheNewestWords) {
    script_.order("load-waits");
    makeEngine();
    script_.waitUntilItDid("load waits");
    engine_->prepare({"Tovik"});
    engine_->prepare({"Zoom"});
    script_.takeBack("load-waits");
    ASSERT_TRUE(engine_->waitUntilReady(kLong));
    EXPECT_THAT(script_.did("learn"), ElementsAre("learn Zoom"));
}

TEST_F(ModelEngineTest, whenSomebodySpeaksAlready_theUtteranceComesFirst) {
    script_.order("load-waits");
    makeEngine();
    script_.waitUntilItDid("load waits");
    engine_->prepare({"Tovik"});
    script_.order("finish-waits");
    const auto answers = say(100);
    script_.takeBack("load-waits");
    script_.waitUntilItDid("finish waits");
    EXPECT_THAT(script_.did("learn"), IsEmpty());
    script_.takeBack("finish-waits");
    EXPECT_EQ(answers.waitForText(), "100 samples");
    EXPECT_TRUE(engine_->waitUntilReady(kLong));
    EXPECT_THAT(script_.did("learn"), ElementsAre("learn Tovik"));
}

TEST_F(ModelEngineTest, whenTheWordsCannotBeLearned_saysSoAndGoesOn) {
    script_.order("learn-fails");
    makeEngine();
    engine_->prepare({"Tovik"});
    EXPECT_TRUE(engine_->waitUntilReady(kLong));
    EXPECT_THAT(log_.logged(),
                ElementsAre("[TovikVoice] Speech recognition could not learn the vocabulary: script"));
    EXPECT_EQ(say(100).waitForText(), "100 samples");
}

TEST_F(ModelEngineTest, whenTheDecoderDiesOverTheWords_doesNotTeachThemAgain) {
    script_.order("learn-crashes");
    makeEngine();
    engine_->prepare({"Tovik"});
    EXPECT_EQ((script_.waitUntilItDid("process ", 2), say(100).waitForText()), "100 samples");
    EXPECT_THAT(script_.did("learn"), ElementsAre("learn Tovik"));
}

TEST_F(ModelEngineTest, whenASecondUtteranceBeginsBeforeTheFirstEnds_answersBoth) {
    script_.order("finish-waits");
    makeEngine();
    const auto first = say(1000);
    script_.waitUntilItDid("finish waits");
    const auto second = say(2000);
    script_.takeBack("finish-waits");
    EXPECT_EQ(first.waitForText(), "1000 samples");
    EXPECT_EQ(second.waitForText(), "2000 samples");
}

TEST_F(ModelEngineTest, whenTheDecoderFails_answersOnceAndGoesOn) {
    script_.order("sound-fails");
    makeEngine();
    const auto first = say(100);
    EXPECT_EQ(first.waitForText(), "<script>");
    script_.takeBack("sound-fails");
    EXPECT_EQ(say(100).waitForText(), "100 samples");
    EXPECT_EQ(first.all().size(), 1U);
    EXPECT_EQ(script_.processes(), 1U);
}

/// What a library may do to the process that it is in.
class Breakdown : public ModelEngineTest, public testing::WithParamInterface<const char*> {};

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
    EXPECT_THAT(log_.logged(), ElementsAre("[TovikVoice] Speech recognition broke down: it is started anew"));
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

TEST_F(ModelEngineTest, whenTheProcessDiesTwiceOverAnUtterance_answersWithAnErrorAndGoesOn) {
    script_.order("finish-crashes");
    makeReadyEngine();
    const auto answers = say(100);
    EXPECT_EQ(answers.waitForText(), "<The recogniser broke down>");
    EXPECT_EQ(answers.all().size(), 1U);
    script_.takeBack("finish-crashes");
    EXPECT_EQ(say(200).waitForText(), "200 samples");
    EXPECT_EQ(script_.processes(), 3U);
}

TEST_F(ModelEngineTest, whenTheLibraryFloodsStandardOutput_hearsNothingOfIt) {
    script_.order("sound-flood");
    makeReadyEngine();
    EXPECT_EQ(say(100).waitForText(), "100 samples");
    EXPECT_EQ(script_.processes(), 1U);
}

TEST_F(ModelEngineTest, whenTheProcessDiesBetweenUtterances_anotherIsReadyForTheNextOne) {
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

TEST_F(ModelEngineTest, whenProcessesDieAgainAndAgain_theyAreReplacedMoreAndMoreSeldom) {
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

TEST_F(ModelEngineTest, whenTheDecoderHangs_aFreshOneHearsTheUtterance) {
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
                Contains("[TovikVoice] Speech recognition does not answer: it is started anew"));
    ASSERT_TRUE(engine_->waitUntilReady(kLong));
    EXPECT_THAT(script_.did("learn"), ElementsAre("learn Tovik", "learn Tovik"));
}

TEST_F(ModelEngineTest, whenAFreshDecoderHangsAsWell_answersWithAnErrorAndGoesOn) {
    script_.order("finish-hangs");
    makeReadyEngine();
    const auto hanging = say(100);
    script_.waitUntilItDid("finish hangs");
    passTimeUntil([&] { return script_.processes() == 2; });
    script_.waitUntilItDid("finish hangs", 2);
    script_.takeBack("finish-hangs");
    passTimeUntil([&] { return !hanging.all().empty(); });
    EXPECT_EQ(hanging.waitForText(), "<The recogniser does not answer>");
    EXPECT_EQ(say(200).waitForText(), "200 samples");
}

TEST_F(ModelEngineTest, whenEverythingWasStoppedForAWhile_theDecoderGetsTimeToGoOn) {
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

TEST_F(ModelEngineTest, whenTheModelDoesNotLoad_itIsLoadedAnewAndWhatWasSaidIsRecognised) {
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

TEST_F(ModelEngineTest, whenTheModelNeverLoads_saysSo) {
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

TEST_F(ModelEngineTest, whenEndedWhileSomebodySpeaks_answersWithAnErrorOnce) {
    makeEngine();
    const auto request = makeRequest();
    const auto answers = start(request);
    append(*request, 100);
    engine_->end();
    EXPECT_EQ(answers.waitForText(), "<Recognition was ended>");
    EXPECT_EQ(answers.all().size(), 1U);
}

TEST_F(ModelEngineTest, whenEndedWhileTheDecoderHangs_doesNotWaitForItAndLeavesNothingBehind) {
    script_.order("finish-hang");
    makeReadyEngine();
    const auto hanging = say(100);
    const auto waiting = say(100);
    script_.waitUntilItDid("finish hangs");
    engine_.reset();
    EXPECT_EQ(hanging.waitForText(), "<Recognition was ended>");
    EXPECT_EQ(waiting.waitForText(), "<Recognition was ended>");
    EXPECT_NE(::kill(script_.process(), 0), 0);
}

TEST_F(ModelEngineTest, whenEndedWhileTheModelLoads_answersEverybody) {
    script_.order("load-hang");
    makeEngine();
    const auto answers = say(100);
    script_.waitUntilItDid("load hangs");
    engine_.reset();
    EXPECT_EQ(answers.waitForText(), "<Recognition was ended>");
}

TEST_F(ModelEngineTest, whenThisProgramDies_itsProcessDiesEvenIfItHangs) {
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

TEST_F(ModelEngineTest, whenTheRequestIsLetGoOfWithoutAnEnd_answersWithWhatWasHeard) {
    makeEngine();
    auto request = makeRequest();
    const auto answers = start(request);
    append(*request, 3000);
    request.reset();
    EXPECT_EQ(answers.waitForText(), "3000 samples");
    EXPECT_EQ(say(10).waitForText(), "10 samples");
}

TEST_F(ModelEngineTest, whenTheModelTakesLongToLoad_nothingSpokenMeanwhileIsLost) {
    makeEngine();
    const auto request = makeRequest();
    append(*request, 41 * 16000);
    request->endAudio();
    EXPECT_EQ(start(request).waitForText(), "656000 samples");
    EXPECT_EQ(request->droppedFrames(), 0u);
    EXPECT_THAT(log_.logged(), IsEmpty());
}

TEST_F(ModelEngineTest, whenTheModelLoadsForLong_keepsMoreSoundThanTheRequestHolds) {
    script_.order("load-waits");
    makeEngine();
    script_.waitUntilItDid("load waits");
    const auto request = makeRequest();
    const auto answers = start(request);
    for (int i = 0; i < 3; ++i) {
        append(*request, 30 * 16000);
        ScriptedEngine::waitUntil([&] { return request->waitingFrames() == 0; });
    }
    request->endAudio();
    script_.takeBack("load-waits");
    EXPECT_EQ(answers.waitForText(), "1440000 samples");
    EXPECT_EQ(request->droppedFrames(), 0U);
}

TEST_F(ModelEngineTest, whenTheMicrophoneHasNoRate_answersWithAnError) {
    makeEngine();
    const auto request = std::make_shared<RecognitionRequest>(RecognitionSettings{}, 0);
    request->endAudio();
    EXPECT_EQ(start(request).waitForText(), "<The microphone has no sample rate>");
}

TEST_F(ModelEngineTest, afterTheEnd_recognisersThatAreStillHeldSaySo) {
    makeEngine();
    const auto recognizer = engine_->makeRecognizer();
    engine_->end();
    EXPECT_FALSE(recognizer->isAvailable());
    EXPECT_EQ(say(100).waitForText(), "<Recognition was ended>");
}

TEST_F(ModelEngineTest, afterTheEnd_tasksMayStillBeFinished) {
    makeEngine();
    const auto answers = say(10);
    ASSERT_TRUE(answers.waitForEnd());
    engine_.reset();
    tasks_.front()->finish();
    tasks_.clear();
}

/// Whatever the answer is, it comes on another thread, and the engine can be asked from there.
TEST_F(ModelEngineTest, handlersAreCalledUnderNoLockAndNotByWhoStartsTheTask) {
    filesThere_ = false;
    makeEngine();
    for (const bool hasEnded : {false, true}) {
        if (hasEnded) {
            engine_->end();
        }
        const auto request = makeRequest();
        request->endAudio();
        std::atomic<bool> isOnAnother = false;
        std::atomic<bool> isAnswered = false;
        const auto task = engine_->makeRecognizer()->startTask(
            request, [&, caller = std::this_thread::get_id()](const auto&, const auto&) {
                isOnAnother = std::this_thread::get_id() != caller;
                isAnswered = engine_->whyUnavailable() && engine_->isIdle();
            });
        ScriptedEngine::waitUntil([&] { return isAnswered.load(); });
        EXPECT_TRUE(isOnAnother);
    }
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
