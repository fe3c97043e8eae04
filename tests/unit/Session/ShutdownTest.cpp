// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/Shutdown.h"

#include "unit/Session/SessionFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace tovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr auto kWaits = "[TovikVoice] Quitting as soon as the last dictation has been delivered";

class ShutdownTest : public test::DeliveryFixture {
protected:
    Shutdown shutdown{platform, recorder, delivery};
};

TEST_F(ShutdownTest, whenNothingIsUnderWay_terminatesAtOnceAndSaysNothing) {
    shutdown.quit(Shutdown::patienceOfSession);
    EXPECT_EQ(terminations, 1);
    EXPECT_THAT(recorder.calls, IsEmpty());
    EXPECT_THAT(log.printed(), IsEmpty());
}

TEST_F(ShutdownTest, whileADictationHasNoText_endsTheRecordingAndWaits) {
    recorder.recognizes = true;
    shutdown.quit(Shutdown::patienceOfSession);
    time.advance(Seconds(2.9));
    EXPECT_EQ(terminations, 0);
    EXPECT_THAT(recorder.calls, ElementsAre("stop"));
    EXPECT_THAT(log.printed(), ElementsAre(kWaits));
}

TEST_F(ShutdownTest, whenTheDictationEndsInAnError_terminates) {
    recorder.recognizes = true;
    shutdown.quit(Shutdown::patienceOfSession);
    recorder.finishRecognizing();
    time.advance(Seconds(1));
    EXPECT_EQ(terminations, 1);
    EXPECT_THAT(log.printed(), ElementsAre(kWaits));
}

TEST_F(ShutdownTest, whenTheTextIsOnItsWayToTheMainThread_letsItArriveAndBePasted) {
    recorder.recognizes = true;
    shutdown.quit(Shutdown::patienceOfSession);
    time.asyncAfter(Seconds(0.2), [this] {
        // As the recognizer's thread does it: the text is queued, and that it was recognized behind it.
        delivery.receive("last words");
        time.async([this] { recorder.finishRecognizing(); });
    });
    time.advance(Seconds(0.2 + 0.28));
    EXPECT_THAT(poster.posted, SizeIs(2));
    EXPECT_EQ(terminations, 0);
    time.advance(Seconds(0.4));
    EXPECT_EQ(terminations, 1);
    EXPECT_THAT(history.entries(), SizeIs(1));
}

TEST_F(ShutdownTest, whileAPasteIsPending_waitsForItAndGivesTheTargetTimeToFetchTheText) {
    delivery.handleTranscription("text");
    shutdown.quit(Shutdown::patienceOfSession);
    time.advance(Seconds(0.28));
    EXPECT_THAT(poster.posted, SizeIs(2));
    time.advance(Seconds(0.25));
    EXPECT_EQ(terminations, 0);
    time.advance(Seconds(0.25));
    EXPECT_EQ(terminations, 1);
}

TEST_F(ShutdownTest, whileThePasteWaitsForKeysThatTheUserHolds_waitsWithIt) {
    delivery.handleTranscription("text");
    poster.waitsForTheUser = true;
    shutdown.quit(Shutdown::patienceOfSession);
    time.advance(Seconds(2.5));
    EXPECT_EQ(terminations, 0);
    poster.userLetsGo();
    time.advance(Seconds(0.5));
    EXPECT_EQ(terminations, 1);
    EXPECT_THAT(log.printed(), testing::Not(testing::Contains(testing::HasSubstr("not pasted in time"))));
}

TEST_F(ShutdownTest, whenTheUserQuits_aSlowRecognizerHasMoreTime) {
    recorder.recognizes = true;
    shutdown.quit(Shutdown::patienceOfUser);
    time.advance(Seconds(9.9));
    EXPECT_EQ(terminations, 0);
    time.advance(Seconds(0.2));
    EXPECT_EQ(terminations, 1);
}

TEST_F(ShutdownTest, whenTheDesktopIsGoneAndNothingWasSaid_saysNothing) {
    delivery.receive("");
    shutdown.keepLastWords();
    EXPECT_THAT(history.entries(), IsEmpty());
    EXPECT_THAT(log.printed(), IsEmpty());
}

TEST_F(ShutdownTest, whenTheRecognizerDoesNotAnswerInTime_terminatesAndSaysSo) {
    recorder.recognizes = true;
    shutdown.quit(Shutdown::patienceOfSession);
    time.advance(Shutdown::patienceOfSession);
    EXPECT_EQ(terminations, 1);
    EXPECT_EQ(log.printed().back(), "[TovikVoice] The last dictation was not recognized in time");
    time.advance(Seconds(10));
    EXPECT_EQ(terminations, 1);
}

TEST_F(ShutdownTest, whenTheTranslationDoesNotComeInTime_saysWhereTheTextIs) {
    defaults.set("TranslationEnabled", true);
    delivery.handleTranscription("text");
    shutdown.quit(Shutdown::patienceOfSession);
    time.advance(Shutdown::patienceOfSession);
    EXPECT_EQ(terminations, 1);
    EXPECT_EQ(log.printed().back(),
              "[TovikVoice] The last dictation was not pasted in time: its text is in the history");
}

TEST_F(ShutdownTest, whenAskedAgainWhileATextWaitsForThePasteOfAnother_keepsItInTheHistory) {
    delivery.receive("first");
    delivery.receive("second");
    time.advance(Seconds(0.1));
    ASSERT_THAT(history.entries(), SizeIs(1));
    shutdown.quit(Shutdown::patienceOfSession);
    shutdown.quit(Shutdown::patienceOfSession);
    EXPECT_EQ(terminations, 1);
    ASSERT_THAT(history.entries(), SizeIs(2));
    EXPECT_EQ(history.entries().front().text, "second");
}

TEST_F(ShutdownTest, whenAskedAgain_terminatesAtOnce) {
    recorder.recognizes = true;
    shutdown.quit(Shutdown::patienceOfSession);
    shutdown.quit(Shutdown::patienceOfSession);
    EXPECT_EQ(terminations, 1);
    time.advance(Seconds(10));
    EXPECT_EQ(terminations, 1);
}

// When the desktop is gone, no event loop runs any more.

TEST_F(ShutdownTest, whenTheDesktopIsGone_aTextThatIsBeingRecognizedGoesToTheHistoryAlone) {
    recorder.recognizes = true;
    recorder.onCall = [this](const std::string& call) {
        EXPECT_EQ(call, "stop");
        delivery.receive("last words");
        recorder.recognizes = false;
    };
    shutdown.keepLastWords();
    ASSERT_THAT(history.entries(), SizeIs(1));
    EXPECT_EQ(history.entries().front().text, "last words");
    EXPECT_THAT(pasteboard.texts(), IsEmpty());
    EXPECT_THAT(mainWindow.calls(), IsEmpty());
    EXPECT_THAT(log.printed(),
                ElementsAre("[TovikVoice] The desktop is gone: the last dictation is kept in the history"));
}

TEST_F(ShutdownTest, whenTheDesktopIsGoneAndNoTextComes_waitsNoLongerThanItsPatienceAndSaysSo) {
    recorder.recognizes = true;
    shutdown.keepLastWords();
    EXPECT_THAT(recorder.waits, ElementsAre(Shutdown::patienceOfSession));
    EXPECT_THAT(log.printed(), ElementsAre("[TovikVoice] The last dictation was not recognized in time"));
}

TEST_F(ShutdownTest, whenTheDesktopIsGoneAndNothingIsUnderWay_doesNothing) {
    shutdown.keepLastWords();
    EXPECT_THAT(recorder.calls, IsEmpty());
    EXPECT_THAT(recorder.waits, IsEmpty());
    EXPECT_THAT(log.printed(), IsEmpty());
}

} // namespace
} // namespace tovik
