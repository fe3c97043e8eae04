// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "ModelEngineFixture.h"

#include <gmock/gmock.h>

namespace tovik::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ModelEngineTest : public ModelEngineFixture {};

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

TEST_F(ModelEngineTest, whenTheFilesTurnUpLater_recognizes) {
    filesThere_ = false;
    makeEngine();
    ASSERT_TRUE(engine_->whyUnavailable());
    filesThere_ = true;
    EXPECT_EQ(engine_->whyUnavailable(), std::nullopt);
    EXPECT_EQ(say(100).waitForText(), "100 samples");
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

TEST_F(ModelEngineTest, whenTheDecoderDoesNotBegin_itIsNotAskedToFinish) {
    makeEngine();
    EXPECT_EQ(say(100).waitForText(), "100 samples");
    script_.order("begin-fails");
    EXPECT_EQ(say(200).waitForText(), "<script>");
    EXPECT_EQ(script_.did("finish").size(), 1U);
    script_.takeBack("begin-fails");
    EXPECT_EQ(say(300).waitForText(), "300 samples");
    EXPECT_EQ(script_.did("finish").size(), 2U);
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

TEST_F(ModelEngineTest, afterTheEnd_recognizersThatAreStillHeldSaySo) {
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

} // namespace
} // namespace tovik::test
