// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "AudioManagerFixture.h"

namespace tovik::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class MacAudioManagerResults : public AudioManagerFixture {};

TEST_F(MacAudioManagerResults, whenTheFinalResultComes_deliversItCleanedUp) {
    startRecording();
    manager().stop();
    speech.lastUtterance()->deliverFinal("hello world");
    EXPECT_THAT(finals, ElementsAre("<hello world>"));
    EXPECT_THAT(partials, IsEmpty());
}

TEST_F(MacAudioManagerResults, whenAPartialResultComes_deliversItAsItStands) {
    startRecording();
    speech.lastUtterance()->deliverPartial("hello");
    speech.lastUtterance()->deliverPartial("hello wor");
    EXPECT_THAT(partials, ElementsAre("hello", "hello wor"));
    EXPECT_THAT(finals, IsEmpty());
}

TEST_F(MacAudioManagerResults, whenTheFinalResultIsEmpty_deliversTheEmptyText) {
    startRecording();
    speech.lastUtterance()->deliverFinal("");
    EXPECT_THAT(finals, ElementsAre(""));
}

TEST_F(MacAudioManagerResults, whenAnErrorComesAlone_logsItAndDeliversNothing) {
    startRecording();
    speech.lastUtterance()->deliverError({"Speech", 3, "No speech detected"});
    EXPECT_THAT(newLines(), ElementsAre("[TovikVoice] Transcription error: No speech detected"));
    EXPECT_THAT(finals, IsEmpty());
    EXPECT_THAT(partials, IsEmpty());
}

TEST_F(MacAudioManagerResults, whenAnErrorComesBesideAResult_theResultCountsAlone) {
    startRecording();
    const Error error{"Speech", 3, "late"};
    speech.lastUtterance()->deliver(RecognitionResult{"one", false}, error);
    speech.lastUtterance()->deliver(RecognitionResult{"two", true}, error);
    EXPECT_THAT(partials, ElementsAre("one"));
    EXPECT_THAT(finals, ElementsAre("<two>"));
    EXPECT_THAT(newLines(), IsEmpty());
}

TEST_F(MacAudioManagerResults, whenNeitherResultNorErrorComes_doesNothing) {
    startRecording();
    speech.lastUtterance()->deliver(std::nullopt, std::nullopt);
    EXPECT_THAT(finals, IsEmpty());
    EXPECT_THAT(partials, IsEmpty());
    EXPECT_THAT(newLines(), IsEmpty());
}

TEST_F(MacAudioManagerResults, withoutCallbacks_dropsResults) {
    callbacks.onTranscription = nullptr;
    callbacks.onPartialUpdate = nullptr;
    startRecording();
    speech.lastUtterance()->deliverPartial("a");
    speech.lastUtterance()->deliverFinal("b");
    EXPECT_THAT(newLines(), IsEmpty());
}

TEST_F(MacAudioManagerResults, whenTheFinalResultComesDuringTheNextDictation_deliversIt) {
    startRecording();
    const auto first = speech.lastUtterance();
    manager().stop();
    startRecording();
    first->deliverFinal("late but whole");
    EXPECT_THAT(finals, ElementsAre("<late but whole>"));
}

TEST_F(MacAudioManagerResults, whenTheTextIsDelivered_itIsNotLogged) {
    startRecording();
    speech.lastUtterance()->deliverPartial("secret");
    speech.lastUtterance()->deliverFinal("secret");
    EXPECT_THAT(log.printed(), Each(Not(HasSubstr("secret"))));
    EXPECT_THAT(log.logged(), IsEmpty());
}

TEST_F(MacAudioManagerResults, isRecognizing_fromTheStartToTheTextOrTheErrorOfEveryDictation) {
    int told = 0;
    const auto subscription = manager().recognized.add([&told] { ++told; });
    EXPECT_FALSE(manager().isRecognizing());
    EXPECT_TRUE(manager().waitUntilRecognized(Seconds(0)));
    startRecording();
    const auto first = speech.lastUtterance();
    manager().stop();
    startRecording();
    const auto second = speech.lastUtterance();
    manager().stop();
    second->deliverPartial("no");
    second->deliverError({"Speech", 3, "No speech detected"});
    time.runPending();
    EXPECT_TRUE(manager().isRecognizing());
    first->deliverPartial("not yet");
    time.runPending();
    EXPECT_TRUE(manager().isRecognizing());
    EXPECT_FALSE(manager().waitUntilRecognized(Seconds(0)));
    EXPECT_EQ(told, 0);
    first->deliverFinal("text");
    EXPECT_TRUE(manager().waitUntilRecognized(Seconds(0)));
    time.runPending();
    EXPECT_FALSE(manager().isRecognizing());
    EXPECT_EQ(told, 1);
    first->deliverFinal("again");
    time.runPending();
    EXPECT_FALSE(manager().isRecognizing());
    EXPECT_EQ(told, 1);
}

TEST_F(MacAudioManagerResults, tellsOfTheEndBehindWhatTheTextHasQueued) {
    std::vector<std::string> order;
    callbacks.onTranscription = [&](const std::string&) {
        time.async([&order] { order.emplace_back("text"); });
    };
    const auto subscription = manager().recognized.add([&order] { order.emplace_back("recognized"); });
    startRecording();
    speech.lastUtterance()->deliverFinal("text");
    time.runPending();
    EXPECT_THAT(order, ElementsAre("text", "recognized"));
}

TEST_F(MacAudioManagerResults, whenTheMainQueueRunsNoMore_theTextCanBeWaitedFor) {
    startRecording();
    const auto utterance = speech.lastUtterance();
    manager().stop();
    std::thread recognizer([&utterance] { utterance->deliverFinal("last words"); });
    EXPECT_TRUE(manager().waitUntilRecognized(Seconds(60)));
    EXPECT_THAT(finals, ElementsAre("<last words>"));
    recognizer.join();
}

// ------------------------------------------------------------------------------ the end of it

TEST_F(MacAudioManagerResults, whenAResultComesAfterTheManagerIsGone_nothingHappens) {
    startRecording();
    const auto utterance = speech.lastUtterance();
    destroyManager();
    forgetLines();
    utterance->deliverFinal("too late");
    utterance->deliverError({"Speech", 1, "too late"});
    EXPECT_THAT(finals, IsEmpty());
    EXPECT_THAT(newLines(), IsEmpty());
}

TEST_F(MacAudioManagerResults, whenDestroyedWhileRecording_letsGoOfTheMicrophoneAndTheRecognizer) {
    startRecording();
    const auto utterance = speech.lastUtterance();
    destroyManager();
    EXPECT_FALSE(engine.hasTap());
    EXPECT_FALSE(engine.isRunning());
    // Would wait for ever if the end of the sound had not been told.
    EXPECT_THAT(utterance->readSound(), IsEmpty());
}

TEST_F(MacAudioManagerResults, whenDestroyedWithTheMicrophoneOpenAhead_closesIt) {
    manager().openAhead(Seconds(0));
    destroyManager();
    EXPECT_FALSE(engine.isOpenAhead());
}

} // namespace
} // namespace tovik::test
