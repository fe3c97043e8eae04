// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Host/ModelEngine.h"

#include "ScriptedDecoder.h"
#include "Audio/RecognitionRequest.h"
#include "support/RecognitionAnswers.h"
#include "support/RecordingLog.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace tovik::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class ModelEngineTest : public testing::Test {
protected:
    ModelEngineTest() {
        limits_.silence = Seconds(60);
        limits_.look = Seconds(0.01);
        limits_.clock = [time = time_] { return std::chrono::steady_clock::time_point(time->load()); };
        limits_.goodbye = Seconds(60);
    }
    ~ModelEngineTest() override {
        // Decoders that a test left hanging may go.
        script_->loading.open();
        script_->finishing.open();
    }

    void makeEngine() {
        engine_ = std::make_shared<ModelEngine>(
            log_,
            ModelEngine::Model{
                .check = [this] { return filesThere_ ? Result<void>() : Result<void>(kMissing); },
                .load = [script = script_, files = files_]() -> Result<std::unique_ptr<UtteranceDecoder>> {
                    script->decoderMade();
                    script->loading.pass();
                    if (files->areBroken) {
                        return kBroken;
                    }
                    return std::unique_ptr<UtteranceDecoder>(std::make_unique<ScriptedDecoder>(script));
                },
                .stamp =
                    [files = files_] {
                        ++files->looks;
                        return std::to_string(files->isChanging ? files->looks.load()
                                                                : files->version.load());
                    }},
            limits_);
    }

    /// Returns after the watch has looked at the files that often from now on.
    void waitForLooks(int count) const {
        for (const int end = files_->looks + count; files_->looks < end;) {
            std::this_thread::yield();
        }
    }

    std::shared_ptr<RecognitionRequest> makeRequest(bool partial = false,
                                                    std::vector<std::string> contextualStrings = {}) {
        RecognitionSettings settings;
        settings.reportPartialResults = partial;
        settings.contextualStrings = std::move(contextualStrings);
        return std::make_shared<RecognitionRequest>(std::move(settings), UtteranceDecoder::sampleRate);
    }

    /// Starts a task on the request; the answers tell what becomes of it.
    RecognitionAnswers start(const std::shared_ptr<RecognitionRequest>& request) {
        const RecognitionAnswers answers;
        tasks_.push_back(engine_->makeRecognizer()->startTask(request, answers.handler()));
        return answers;
    }

    static void append(RecognitionRequest& request, std::size_t frames) {
        const std::vector<float> sound(frames, 0.1F);
        request.append({sound, UtteranceDecoder::sampleRate});
    }

    /// A whole utterance of that many frames.
    RecognitionAnswers say(std::size_t frames) {
        const auto request = makeRequest();
        append(*request, frames);
        request->endAudio();
        return start(request);
    }

    inline static const Error kMissing{"SpeechRecognition", 2, "The model is missing. Install it."};
    inline static const Error kBroken{"SpeechRecognition", 2, "The model is broken."};

    /// The model's files, as one sees them who looks at them now.
    struct Files {
        std::atomic<bool> areBroken{false};
        std::atomic<int> version{0};
        std::atomic<bool> isChanging{false};
        std::atomic<int> looks{0};
    };

    /// The time as the service knows it; stands still.
    const std::shared_ptr<std::atomic<std::chrono::steady_clock::duration>> time_ =
        std::make_shared<std::atomic<std::chrono::steady_clock::duration>>();
    RecordingLog log_;
    const std::shared_ptr<DecoderScript> script_ = std::make_shared<DecoderScript>();
    std::atomic<bool> filesThere_{true};
    const std::shared_ptr<Files> files_ = std::make_shared<Files>();
    ModelEngine::Limits limits_;
    std::shared_ptr<ModelEngine> engine_;
    std::vector<std::unique_ptr<RecognitionTask>> tasks_;
};

TEST_F(ModelEngineTest, whileTheModelLoads_isAvailableAndLosesNoSound) {
    script_->loading.close();
    makeEngine();
    script_->loading.waitForSomebody();
    EXPECT_EQ(engine_->whyUnavailable(), std::nullopt);
    const auto answers = say(5000);
    script_->loading.open();
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

TEST_F(ModelEngineTest, whenLoadingFails_saysWhyAndAnswersWithTheReason) {
    files_->areBroken = true;
    script_->loading.close();
    makeEngine();
    const auto before = say(100);
    script_->loading.open();
    EXPECT_EQ(before.waitForText(), "<The model is broken.>");
    EXPECT_EQ(say(100).waitForText(), "<The model is broken.>");
    EXPECT_EQ(engine_->whyUnavailable(), "The model is broken.");
    EXPECT_FALSE(engine_->waitUntilReady(Seconds(60)));
    EXPECT_THAT(log_.logged(), Contains(HasSubstr("The model is broken.")));
}

TEST_F(ModelEngineTest, whenABrokenModelIsMended_loadsItAndIsUnavailableUntilThen) {
    files_->areBroken = true;
    makeEngine();
    ASSERT_EQ(say(100).waitForText(), "<The model is broken.>");
    script_->loading.close();
    files_->areBroken = false;
    ++files_->version;
    script_->waitForDecoders(2);
    EXPECT_EQ(engine_->whyUnavailable(), "The model is broken.");
    script_->loading.open();
    EXPECT_EQ(say(100).waitForText(), "100 samples");
    EXPECT_EQ(engine_->whyUnavailable(), std::nullopt);
}

TEST_F(ModelEngineTest, whileABrokenModelIsTheSame_doesNotLoadItAgain) {
    files_->areBroken = true;
    makeEngine();
    ASSERT_EQ(say(100).waitForText(), "<The model is broken.>");
    waitForLooks(5);
    EXPECT_EQ(script_->decoders(), 1);
}

TEST_F(ModelEngineTest, whileABrokenModelIsBeingUnpacked_waitsForTheEndOfThat) {
    files_->areBroken = true;
    makeEngine();
    ASSERT_EQ(say(100).waitForText(), "<The model is broken.>");
    files_->isChanging = true;
    waitForLooks(5);
    EXPECT_EQ(script_->decoders(), 1);
    files_->areBroken = false;
    files_->isChanging = false;
    ++files_->version;
    script_->waitForDecoders(2);
    EXPECT_EQ(say(100).waitForText(), "100 samples");
}

TEST_F(ModelEngineTest, handsTheContextualStringsToTheDecoder) {
    makeEngine();
    const auto request = makeRequest(false, {"Tovik", "Zoom"});
    request->endAudio();
    ASSERT_TRUE(start(request).waitForEnd());
    EXPECT_THAT(script_->contextualStrings(), ElementsAre(ElementsAre("Tovik", "Zoom")));
}

TEST_F(ModelEngineTest, whenPreparedForWords_theDecoderLearnsThemBeforeAnybodySpeaks) {
    makeEngine();
    engine_->prepare({"Tovik", "Zoom"});
    ASSERT_TRUE(engine_->waitUntilReady(Seconds(60)));
    EXPECT_THAT(script_->learned(), ElementsAre(ElementsAre("Tovik", "Zoom")));
    EXPECT_THAT(script_->contextualStrings(), IsEmpty());
}

TEST_F(ModelEngineTest, whenPreparedWhileTheModelLoads_learnsOnlyTheNewestWords) {
    script_->loading.close();
    makeEngine();
    script_->loading.waitForSomebody();
    engine_->prepare({"Tovik"});
    engine_->prepare({"Zoom"});
    script_->loading.open();
    ASSERT_TRUE(engine_->waitUntilReady(Seconds(60)));
    EXPECT_THAT(script_->learned(), ElementsAre(ElementsAre("Zoom")));
}

TEST_F(ModelEngineTest, whenSomebodySpeaksAlready_theUtteranceComesFirst) {
    script_->loading.close();
    makeEngine();
    script_->loading.waitForSomebody();
    engine_->prepare({"Tovik"});
    script_->finishing.close();
    const auto answers = say(100);
    script_->loading.open();
    script_->finishing.waitForSomebody();
    EXPECT_THAT(script_->learned(), IsEmpty());
    script_->finishing.open();
    EXPECT_EQ(answers.waitForText(), "100 samples");
    EXPECT_TRUE(engine_->waitUntilReady(Seconds(60)));
}

TEST_F(ModelEngineTest, afterAHang_theFreshDecoderLearnsTheWordsToo) {
    script_->finishing.close();
    makeEngine();
    engine_->prepare({"Tovik"});
    ASSERT_TRUE(engine_->waitUntilReady(Seconds(60)));
    const auto hanging = say(100);
    script_->finishing.waitForSomebody();
    *time_ = std::chrono::minutes(2);
    ASSERT_TRUE(hanging.waitForEnd());
    script_->finishing.open();
    ASSERT_TRUE(engine_->waitUntilReady(Seconds(60)));
    EXPECT_THAT(script_->learned(), ElementsAre(ElementsAre("Tovik"), ElementsAre("Tovik")));
}

TEST_F(ModelEngineTest, whenTheWordsCannotBeLearned_saysSoAndGoesOn) {
    script_->failToLearn();
    makeEngine();
    engine_->prepare({"Tovik"});
    EXPECT_TRUE(engine_->waitUntilReady(Seconds(60)));
    EXPECT_THAT(log_.logged(),
                ElementsAre("[TovikVoice] Speech recognition could not learn the vocabulary: script"));
    EXPECT_EQ(say(100).waitForText(), "100 samples");
}

TEST_F(ModelEngineTest, whenASecondUtteranceBeginsBeforeTheFirstEnds_answersBoth) {
    script_->finishing.close();
    makeEngine();
    const auto first = say(1000);
    script_->finishing.waitForSomebody();
    const auto second = say(2000);
    script_->finishing.open();
    EXPECT_EQ(first.waitForText(), "1000 samples");
    EXPECT_EQ(second.waitForText(), "2000 samples");
}

TEST_F(ModelEngineTest, whenTheDecoderFails_answersOnceAndGoesOn) {
    script_->failFrom(1);
    makeEngine();
    const auto first = say(100);
    EXPECT_EQ(first.waitForText(), "<The recogniser failed: script>");
    script_->failFrom(1000);
    EXPECT_EQ(say(100).waitForText(), "100 samples");
    EXPECT_EQ(first.all().size(), 1U);
}

TEST_F(ModelEngineTest, whenTheDecoderHangs_givesItUpAndTheNextUtteranceIsRecognised) {
    script_->finishing.close();
    makeEngine();
    const auto hanging = say(100);
    const auto waiting = say(200);
    script_->finishing.waitForSomebody();
    *time_ = std::chrono::minutes(2);
    EXPECT_EQ(hanging.waitForText(), "<The recogniser does not answer>");
    script_->finishing.open();
    EXPECT_EQ(waiting.waitForText(), "200 samples");
    EXPECT_EQ(hanging.all().size(), 1U);
    EXPECT_EQ(script_->decoders(), 2);
    EXPECT_THAT(log_.logged(),
                Contains("[TovikVoice] Speech recognition does not answer: it is started anew"));
}

TEST_F(ModelEngineTest, whenTheWholeProcessWasStoppedForAWhile_theDecoderGetsTimeToGoOn) {
    script_->finishing.close();
    // The first look after the stop finds the decoder silent for long; by the next it has moved.
    std::atomic<bool> wasStopped = false;
    std::atomic<int> looks = 0;
    limits_.clock = [&] {
        ++looks;
        return std::chrono::steady_clock::time_point(
            std::chrono::minutes(wasStopped.exchange(false) ? 2 : 0));
    };
    makeEngine();
    const auto answers = say(100);
    script_->finishing.waitForSomebody();
    wasStopped = true;
    const int before = looks;
    while (looks < before + 4) {
        std::this_thread::yield();
    }
    script_->finishing.open();
    EXPECT_EQ(answers.waitForText(), "100 samples");
    EXPECT_EQ(script_->decoders(), 1);
    engine_.reset();
}

TEST_F(ModelEngineTest, whenTheModelNeverLoads_itIsLoadedAnewAndWhatWasSaidIsRecognised) {
    limits_.loading = Seconds(600);
    script_->loading.close();
    makeEngine();
    const auto waiting = say(100);
    script_->loading.waitForSomebody();
    // Long for a decoder, not for a model on a slow disk.
    *time_ = std::chrono::minutes(9);
    EXPECT_FALSE(engine_->waitUntilReady(Seconds(0.1)));
    EXPECT_EQ(script_->decoders(), 1);
    *time_ = std::chrono::minutes(11);
    script_->waitForDecoders(2);
    script_->loading.open();
    EXPECT_EQ(waiting.waitForText(), "100 samples");
    EXPECT_EQ(waiting.all().size(), 1U);
}

TEST_F(ModelEngineTest, whenEndedWhileSomebodySpeaks_answersWithAnErrorOnce) {
    makeEngine();
    const auto request = makeRequest();
    const auto answers = start(request);
    append(*request, 100);
    engine_.reset();
    EXPECT_EQ(answers.waitForText(), "<Recognition was ended>");
    EXPECT_EQ(answers.all().size(), 1U);
}

TEST_F(ModelEngineTest, whenEndedWhileTheDecoderHangs_doesNotWaitForIt) {
    limits_.goodbye = Seconds(0.01);
    script_->finishing.close();
    makeEngine();
    const auto hanging = say(100);
    const auto waiting = say(100);
    script_->finishing.waitForSomebody();
    engine_.reset();
    EXPECT_EQ(hanging.waitForText(), "<Recognition was ended>");
    EXPECT_EQ(waiting.waitForText(), "<Recognition was ended>");
}

TEST_F(ModelEngineTest, whenEndedWhileTheModelLoads_answersEverybody) {
    limits_.goodbye = Seconds(0.01);
    script_->loading.close();
    makeEngine();
    const auto answers = say(100);
    engine_.reset();
    EXPECT_EQ(answers.waitForText(), "<Recognition was ended>");
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

TEST_F(ModelEngineTest, whenSoundWasDropped_leavesItToTheOneWhoRecordedToSaySo) {
    script_->loading.close();
    makeEngine();
    const auto request = makeRequest();
    append(*request, 41 * 16000);
    request->endAudio();
    const auto answers = start(request);
    script_->loading.open();
    EXPECT_EQ(answers.waitForText(), "640000 samples");
    EXPECT_EQ(request->droppedFrames(), 16000u);
    EXPECT_THAT(log_.logged(), IsEmpty());
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

} // namespace
} // namespace tovik::test
