// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/Farewell.h"

#include "Session/TranscriptInbox.h"
#include "unit/Session/DeliveryFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr auto kWaits = "[TovikVoice] Quitting as soon as the last dictation has been delivered";

class FarewellTest : public test::DeliveryFixture {
protected:
    int terminations = 0;
    TranscriptInbox inbox;
    Farewell farewell{{.clock = time,
                       .queue = time,
                       .log = log,
                       .recorder = recorder,
                       .delivery = delivery,
                       .inbox = inbox,
                       .terminate = [this] { ++terminations; }}};
};

TEST_F(FarewellTest, whenNothingIsUnderWay_terminatesAtOnceAndSaysNothing) {
    farewell.quit(Farewell::patienceOfSession);
    EXPECT_EQ(terminations, 1);
    EXPECT_THAT(recorder.calls, IsEmpty());
    EXPECT_THAT(log.printed(), IsEmpty());
}

TEST_F(FarewellTest, whileADictationHasNoText_endsTheRecordingAndWaits) {
    recorder.recognises = true;
    farewell.quit(Farewell::patienceOfSession);
    time.advance(Seconds(2.9));
    EXPECT_EQ(terminations, 0);
    EXPECT_THAT(recorder.calls, ElementsAre("stop"));
    EXPECT_THAT(log.printed(), ElementsAre(kWaits));
}

TEST_F(FarewellTest, whenTheDictationEndsInAnError_terminates) {
    recorder.recognises = true;
    farewell.quit(Farewell::patienceOfSession);
    recorder.recognises = false;
    time.advance(Seconds(1));
    EXPECT_EQ(terminations, 1);
    EXPECT_THAT(log.printed(), ElementsAre(kWaits));
}

TEST_F(FarewellTest, whenTheTextIsOnItsWayToTheMainThread_letsItArriveAndBePasted) {
    recorder.recognises = true;
    farewell.quit(Farewell::patienceOfSession);
    time.asyncAfter(Seconds(0.2), [this] {
        // As the recogniser's thread does it: the text is queued, then the dictation counts as answered.
        time.async([this] { delivery.handleTranscription("last words"); });
        recorder.recognises = false;
    });
    time.advance(Seconds(0.2 + 0.28));
    EXPECT_THAT(poster.posted, SizeIs(2));
    EXPECT_EQ(terminations, 0);
    time.advance(Seconds(0.4));
    EXPECT_EQ(terminations, 1);
    EXPECT_THAT(history.entries(), SizeIs(1));
}

TEST_F(FarewellTest, whileAPasteIsPending_waitsForItAndGivesTheTargetTimeToFetchTheText) {
    delivery.handleTranscription("text");
    farewell.quit(Farewell::patienceOfSession);
    time.advance(Seconds(0.28));
    EXPECT_THAT(poster.posted, SizeIs(2));
    time.advance(Seconds(0.25));
    EXPECT_EQ(terminations, 0);
    time.advance(Seconds(0.25));
    EXPECT_EQ(terminations, 1);
}

TEST_F(FarewellTest, whileThePasteWaitsForKeysThatTheUserHolds_waitsWithIt) {
    delivery.handleTranscription("text");
    poster.waitsForTheUser = true;
    farewell.quit(Farewell::patienceOfSession);
    time.advance(Seconds(2.5));
    EXPECT_EQ(terminations, 0);
    poster.waitsForTheUser = false;
    time.advance(Seconds(0.5));
    EXPECT_EQ(terminations, 1);
    EXPECT_THAT(log.printed(), testing::Not(testing::Contains(testing::HasSubstr("not pasted in time"))));
}

TEST_F(FarewellTest, whenTheUserQuits_aSlowRecogniserHasMoreTime) {
    recorder.recognises = true;
    farewell.quit(Farewell::patienceOfUser);
    time.advance(Seconds(9.9));
    EXPECT_EQ(terminations, 0);
    time.advance(Seconds(0.2));
    EXPECT_EQ(terminations, 1);
}

TEST_F(FarewellTest, whenTheDesktopIsGoneAndNothingWasSaid_saysNothing) {
    inbox.put("");
    farewell.keepLastWords();
    EXPECT_THAT(history.entries(), IsEmpty());
    EXPECT_THAT(log.printed(), IsEmpty());
}

TEST_F(FarewellTest, whenTheRecogniserDoesNotAnswerInTime_terminatesAndSaysSo) {
    recorder.recognises = true;
    farewell.quit(Farewell::patienceOfSession);
    time.advance(Farewell::patienceOfSession);
    EXPECT_EQ(terminations, 1);
    EXPECT_EQ(log.printed().back(), "[TovikVoice] The last dictation was not recognised in time");
    time.advance(Seconds(10));
    EXPECT_EQ(terminations, 1);
}

TEST_F(FarewellTest, whenTheTranslationDoesNotComeInTime_saysWhereTheTextIs) {
    defaults.set("TranslationEnabled", true);
    delivery.handleTranscription("text");
    farewell.quit(Farewell::patienceOfSession);
    time.advance(Farewell::patienceOfSession);
    EXPECT_EQ(terminations, 1);
    EXPECT_EQ(log.printed().back(),
              "[TovikVoice] The last dictation was not pasted in time: its text is in the history");
}

TEST_F(FarewellTest, whenAskedAgain_terminatesAtOnce) {
    recorder.recognises = true;
    farewell.quit(Farewell::patienceOfSession);
    farewell.quit(Farewell::patienceOfSession);
    EXPECT_EQ(terminations, 1);
    time.advance(Seconds(10));
    EXPECT_EQ(terminations, 1);
}

// When the desktop is gone, no event loop runs any more.

TEST_F(FarewellTest, whenTheDesktopIsGone_aTextThatIsBeingRecognisedGoesToTheHistoryAlone) {
    recorder.recognises = true;
    recorder.onCall = [this](const std::string& call) {
        EXPECT_EQ(call, "stop");
        inbox.put("last words");
        recorder.recognises = false;
    };
    farewell.keepLastWords();
    ASSERT_THAT(history.entries(), SizeIs(1));
    EXPECT_EQ(history.entries().front().text, "last words");
    EXPECT_THAT(pasteboard.texts(), IsEmpty());
    EXPECT_THAT(mainWindow.calls(), IsEmpty());
    EXPECT_THAT(log.printed(),
                ElementsAre("[TovikVoice] The desktop is gone: the last dictation is kept in the history"));
}

TEST_F(FarewellTest, whenTheDesktopIsGoneAndNoTextComes_waitsNoLongerThanItsPatienceAndSaysSo) {
    recorder.recognises = true;
    const auto before = time.now();
    farewell.keepLastWords();
    EXPECT_LE(time.now() - before, Farewell::patienceOfSession + Seconds(0.1));
    EXPECT_THAT(log.printed(), ElementsAre("[TovikVoice] The last dictation was not recognised in time"));
}

TEST_F(FarewellTest, whenTheDesktopIsGoneAndNothingIsUnderWay_doesNothing) {
    farewell.keepLastWords();
    EXPECT_THAT(recorder.calls, IsEmpty());
    EXPECT_THAT(time.pauses(), IsEmpty());
    EXPECT_THAT(log.printed(), IsEmpty());
}

} // namespace
} // namespace tovik
