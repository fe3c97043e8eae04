// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/TranscriptDelivery.h"

#include "unit/Session/SessionFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <thread>

namespace tovik {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class TranscriptDeliveryTest : public test::DeliveryFixture {
protected:
    TranscriptDeliveryTest() {
        targets.startFollowing();
        workspace.bringToFront(editor);
        targets.chooseTarget();
        poster.onPost = [this](const test::FakeKeyEventPoster::Posted&) {
            postedAt.push_back(time.now() - begin);
        };
    }

    [[nodiscard]] std::vector<std::string> storedTexts() const {
        std::vector<std::string> texts;
        for (const auto& entry : history.entries()) {
            texts.push_back(entry.text);
        }
        return texts;
    }

    /// Lets the pending paste happen.
    void finishPaste() { time.advance(Seconds(1)); }

    const Date begin = time.now();
    std::vector<Date::duration> postedAt;
};

const test::FakeKeyEventPoster::Posted pasteDown{{EventSourceState::hidSystem, kVKeyCode, true, kCommandFlag},
                                                 EventTap::hid};
const test::FakeKeyEventPoster::Posted pasteUp{{EventSourceState::hidSystem, kVKeyCode, false, kCommandFlag},
                                               EventTap::hid};
const test::FakeKeyEventPoster::Posted sessionPasteDown{
    {EventSourceState::combinedSession, kVKeyCode, true, kCommandFlag}, EventTap::annotatedSession};
const test::FakeKeyEventPoster::Posted sessionPasteUp{
    {EventSourceState::combinedSession, kVKeyCode, false, kCommandFlag}, EventTap::annotatedSession};

// From the final text to the paste.

TEST_F(TranscriptDeliveryTest, aTranscript_isPutOnThePasteboardAtOnceAndPasted280MillisecondsLater) {
    delivery.handleTranscription("hello there");
    EXPECT_THAT(pasteboard.texts(), ElementsAre("hello there"));
    EXPECT_THAT(workspace.calls, ElementsAre("hideSelf"));

    time.advance(Seconds(0.1));
    EXPECT_THAT(workspace.calls, ElementsAre("hideSelf", "deactivateSelf", "activate"));
    EXPECT_THAT(poster.posted, IsEmpty());

    time.advance(Seconds(0.18));
    EXPECT_THAT(poster.posted, ElementsAre(pasteDown, pasteUp));
    EXPECT_THAT(postedAt, ElementsAre(std::chrono::milliseconds(280), std::chrono::milliseconds(280)));
}

TEST_F(TranscriptDeliveryTest, theTarget_isActivatedWithAllWindowsIgnoringOtherApplications) {
    delivery.handleTranscription("hello");
    finishPaste();
    EXPECT_THAT(workspace.activated, ElementsAre(test::FakeWorkspace::Activation{editor, 3}));
}

TEST_F(TranscriptDeliveryTest, everyStep_hasItsLine) {
    delivery.handleTranscription("hello");
    finishPaste();
    EXPECT_THAT(log.printed(),
                ElementsAre("[TovikVoice] Raw Transcription: hello",
                            "[TovikVoice] Restoring focus to target app: Editor",
                            "[TovikVoice] Activated target app", "[TovikVoice] Posted paste events"));
    EXPECT_THAT(log.logged(), IsEmpty());
}

TEST_F(TranscriptDeliveryTest, corrections_areAppliedAndSaid) {
    delivery.handleTranscription("bot to bot is great");
    EXPECT_THAT(pasteboard.texts(), ElementsAre("Tovik Record is great"));
    EXPECT_THAT(log.printed(), ElementsAre("[TovikVoice] Raw Transcription: bot to bot is great",
                                           "[TovikVoice] Corrected Transcription: Tovik Record is great"));
    EXPECT_EQ(delivery.lastTranscript(), "Tovik Record is great");
    EXPECT_THAT(delivery.transcriptHistory(), ElementsAre("Tovik Record is great"));
    EXPECT_THAT(storedTexts(), ElementsAre("Tovik Record is great"));
    EXPECT_THAT(mainWindow.calls(), ElementsAre("reloadHistoryTable"));
}

TEST_F(TranscriptDeliveryTest, anEmptyText_isRecordedAndPastedButNotStored) {
    delivery.handleTranscription("");
    finishPaste();
    EXPECT_EQ(delivery.lastTranscript(), "");
    EXPECT_THAT(delivery.transcriptHistory(), ElementsAre(""));
    EXPECT_THAT(storedTexts(), IsEmpty());
    EXPECT_THAT(pasteboard.texts(), ElementsAre(""));
    EXPECT_THAT(poster.posted, ElementsAre(pasteDown, pasteUp));
}

TEST_F(TranscriptDeliveryTest, the26thTranscript_dropsTheOldestOfTheRunOnly) {
    for (int i = 1; i <= 26; ++i) {
        delivery.handleTranscription("text " + std::to_string(i));
    }
    EXPECT_EQ(delivery.transcriptHistory().size(), 25u);
    EXPECT_EQ(delivery.transcriptHistory().front(), "text 26");
    EXPECT_EQ(delivery.transcriptHistory().back(), "text 2");
    EXPECT_EQ(history.entries().size(), 26u);
}

// Where the text goes.

TEST_F(TranscriptDeliveryTest, withoutATarget_theKeystrokeIsSentAllTheSame) {
    workspace.quit(editor);
    targets.chooseTarget();
    delivery.handleTranscription("hello");
    finishPaste();
    EXPECT_THAT(workspace.activated, IsEmpty());
    EXPECT_THAT(workspace.calls, ElementsAre("hideSelf", "deactivateSelf"));
    EXPECT_THAT(log.printed(), ElementsAre("[TovikVoice] Raw Transcription: hello",
                                           "[TovikVoice] Restoring focus to target app: unknown",
                                           "[TovikVoice] Posted paste events"));
    EXPECT_THAT(poster.posted, ElementsAre(pasteDown, pasteUp));
}

TEST_F(TranscriptDeliveryTest, aTargetWithoutAName_isCalledUnknown) {
    workspace.bringToFront({"org.nameless", 300, std::nullopt, 9});
    targets.chooseTarget();
    delivery.handleTranscription("hello");
    finishPaste();
    EXPECT_THAT(log.printed(), Contains("[TovikVoice] Restoring focus to target app: unknown"));
    EXPECT_EQ(workspace.activated.size(), 1u);
}

TEST_F(TranscriptDeliveryTest, aTargetThatHasQuit_isStillAskedAndThePasteGoesToTheFront) {
    workspace.quit(editor);
    delivery.handleTranscription("hello");
    finishPaste();
    EXPECT_EQ(workspace.activated.size(), 1u);
    EXPECT_THAT(log.printed(), Contains("[TovikVoice] Activated target app"));
    EXPECT_THAT(poster.posted, ElementsAre(pasteDown, pasteUp));
}

TEST_F(TranscriptDeliveryTest, afterThePaste_theTargetStaysKnown) {
    delivery.handleTranscription("one");
    finishPaste();
    delivery.handleTranscription("two");
    finishPaste();
    EXPECT_THAT(workspace.activated, ElementsAre(test::FakeWorkspace::Activation{editor, 3},
                                                 test::FakeWorkspace::Activation{editor, 3}));
}

TEST_F(TranscriptDeliveryTest, aSecondTextDuringTheDelays_winsThePasteboardOfBothPastes) {
    delivery.handleTranscription("one");
    time.advance(Seconds(0.15));
    delivery.handleTranscription("two");
    time.advance(Seconds(0.13));
    EXPECT_EQ(poster.posted.size(), 2u);
    EXPECT_EQ(pasteboard.contents(), "two");
    finishPaste();
    EXPECT_EQ(poster.posted.size(), 4u);
    EXPECT_EQ(pasteboard.contents(), "two");
}

// What can go wrong.

TEST_F(TranscriptDeliveryTest, withoutAccessibility_theTextIsDroppedAndSaidInTheSystemLog) {
    authorization.setTrusted(false);
    delivery.handleTranscription("hello");
    finishPaste();
    EXPECT_THAT(log.logged(), ElementsAre("[TovikVoice] Accessibility permission not granted",
                                          "[TovikVoice] Accessibility not granted, cannot auto-paste"));
    EXPECT_EQ(delivery.lastTranscript(), std::nullopt);
    EXPECT_THAT(delivery.transcriptHistory(), IsEmpty());
    EXPECT_THAT(storedTexts(), IsEmpty());
    EXPECT_THAT(pasteboard.texts(), IsEmpty());
    EXPECT_THAT(poster.posted, IsEmpty());
}

TEST_F(TranscriptDeliveryTest, whenKeysCannotBePressed_theTextStaysOnThePasteboard) {
    poster.canMakeKeyUp = false;
    delivery.handleTranscription("hello");
    finishPaste();
    EXPECT_THAT(log.printed(), Contains("[TovikVoice] Failed to create paste events"));
    EXPECT_THAT(poster.posted, IsEmpty());
    EXPECT_EQ(pasteboard.contents(), "hello");
}

TEST_F(TranscriptDeliveryTest, whenTheOwnerIsGoneDuringTheDelays_nothingIsPressed) {
    auto shortLived = std::make_unique<TranscriptDelivery>(platform, mainWindow, permissionRequests, targets,
                                                           dictionary, history, translator);
    shortLived->handleTranscription("hello");
    shortLived.reset();
    finishPaste();
    EXPECT_THAT(poster.posted, IsEmpty());
}

TEST_F(TranscriptDeliveryTest, textsFromOtherThreads_areHandledOnTheMainThreadInTheirOrder) {
    std::thread([this] {
        delivery.receive("one");
        delivery.receive("two");
    }).join();
    EXPECT_THAT(pasteboard.texts(), IsEmpty());
    EXPECT_TRUE(delivery.isUnderWay());
    time.runPending();
    EXPECT_THAT(pasteboard.texts(), ElementsAre("one"));
    time.advance(Seconds(0.28));
    EXPECT_THAT(pasteboard.texts(), ElementsAre("one", "two"));
}

TEST_F(TranscriptDeliveryTest, aTextThatIsReceivedDuringTheDelaysOfAnother_leavesItItsPaste) {
    std::vector<std::string> pasted;
    poster.onPost = [&](const test::FakeKeyEventPoster::Posted& posted) {
        if (posted.event.keyDown) {
            pasted.push_back(pasteboard.contents().value_or(""));
        }
    };
    delivery.receive("one");
    time.advance(Seconds(0.15));
    delivery.receive("two");
    delivery.receive("three");
    finishPaste();
    EXPECT_THAT(pasted, ElementsAre("one", "two", "three"));
    EXPECT_FALSE(delivery.isUnderWay());
}

TEST_F(TranscriptDeliveryTest, tellsWhenNothingIsUnderWayAnyMore) {
    int told = 0;
    const auto subscription = delivery.delivered.add([&told] { ++told; });
    delivery.handleTranscription("hello");
    EXPECT_TRUE(delivery.isUnderWay());
    time.advance(Seconds(0.27));
    EXPECT_EQ(told, 0);
    finishPaste();
    EXPECT_EQ(told, 1);
    EXPECT_FALSE(delivery.isUnderWay());
    poster.waitsForTheUser = true;
    delivery.handleTranscription("again");
    finishPaste();
    EXPECT_EQ(told, 1);
    poster.userLetsGo();
    EXPECT_EQ(told, 2);
}

// Translation.

class TranslatedDeliveryTest : public TranscriptDeliveryTest {
protected:
    TranslatedDeliveryTest() { defaults.set("TranslationEnabled", true); }
};

TEST_F(TranslatedDeliveryTest, aTranslation_isPastedAloneAndKeptWithTheUntranslatedText) {
    delivery.handleTranscription("good morning");
    EXPECT_THAT(translator.texts, ElementsAre("good morning"));
    EXPECT_THAT(pasteboard.texts(), IsEmpty());

    translator.answer(TranslationResult{"good morning", "buenos días", "en", "es"});
    finishPaste();
    EXPECT_THAT(pasteboard.texts(), ElementsAre("buenos días"));
    EXPECT_EQ(delivery.lastTranscript(), "buenos días\n[good morning]");
    EXPECT_THAT(storedTexts(), ElementsAre("good morning"));
    EXPECT_THAT(delivery.transcriptHistory(), ElementsAre("good morning"));
    EXPECT_THAT(log.printed(), Contains("[TovikVoice] Translation: 'good morning' → 'buenos días'"));
}

TEST_F(TranslatedDeliveryTest, withoutAResult_theCorrectedTextIsPasted) {
    delivery.handleTranscription("bot to bot");
    translator.answer(std::nullopt);
    EXPECT_THAT(pasteboard.texts(), ElementsAre("Tovik Record"));
    EXPECT_EQ(delivery.lastTranscript(), "Tovik Record");
    EXPECT_THAT(mainWindow.toasts(), IsEmpty());
}

TEST_F(TranslatedDeliveryTest, translationsThatComeInAnotherOrder_arePastedInTheOrderOfTheirTexts) {
    std::vector<std::string> pasted;
    poster.onPost = [&](const test::FakeKeyEventPoster::Posted& posted) {
        if (posted.event.keyDown) {
            pasted.push_back(pasteboard.contents().value_or(""));
        }
    };
    delivery.receive("one");
    delivery.receive("two");
    delivery.receive("three");
    time.runPending();
    EXPECT_THAT(translator.texts, ElementsAre("one", "two", "three")) << "none waits for another";
    defaults.set("TranslationEnabled", false);
    delivery.receive("four");
    time.runPending();
    translator.answerNewest(TranslationResult{"three", "tres", "en", "es"});
    translator.answerNewest(std::nullopt);
    finishPaste();
    EXPECT_THAT(pasteboard.texts(), IsEmpty());
    EXPECT_TRUE(delivery.isUnderWay());
    translator.answer(TranslationResult{"one", "uno", "en", "es"});
    EXPECT_THAT(pasteboard.texts(), ElementsAre("uno"));
    time.advance(Seconds(4 * 0.28));
    EXPECT_THAT(pasted, ElementsAre("uno", "two", "tres", "four"));
    EXPECT_EQ(delivery.lastTranscript(), "tres\n[three]");
    EXPECT_FALSE(delivery.isUnderWay());
}

TEST_F(TranslatedDeliveryTest, whenATranslationNeverComes_theTextIsPastedAsItWasSaidAndTheNextOnesFollow) {
    delivery.handleTranscription("one");
    delivery.handleTranscription("two");
    translator.answerNewest(TranslationResult{"two", "dos", "en", "es"});
    time.advance(Seconds(29.9));
    EXPECT_THAT(pasteboard.texts(), IsEmpty());
    time.advance(Seconds(0.1));
    EXPECT_THAT(pasteboard.texts(), ElementsAre("one"));
    finishPaste();
    EXPECT_THAT(pasteboard.texts(), ElementsAre("one", "dos"));
    EXPECT_THAT(log.logged(),
                ElementsAre("[TovikVoice] No translation came in time: pasting the text as it was said"));
    translator.answer(TranslationResult{"one", "uno", "en", "es"});
    finishPaste();
    EXPECT_THAT(pasteboard.texts(), ElementsAre("one", "dos")) << "what comes late finds nothing";
    EXPECT_FALSE(delivery.isUnderWay());
    EXPECT_EQ(time.pendingCount(), 0u);
}

TEST_F(TranslatedDeliveryTest, whenATranslationComesAfterItsTimeButBeforeItsTurn_theTextStaysAsItWasSaid) {
    delivery.handleTranscription(std::string(5000, 'x'));
    delivery.handleTranscription("two");
    time.advance(Seconds(31));
    translator.answerNewest(TranslationResult{"two", "dos", "en", "es"});
    EXPECT_THAT(pasteboard.texts(), IsEmpty()) << "a long text has longer";
    translator.answer(std::nullopt);
    time.advance(Seconds(0.3));
    EXPECT_EQ(pasteboard.contents(), "two");
}

TEST_F(TranslatedDeliveryTest, theLogLine_cutsEachSideTo50Characters) {
    std::string source;
    for (int i = 0; i < 51; ++i) {
        source += "é";
    }
    delivery.handleTranscription(source);
    translator.answer(TranslationResult{source, std::string(60, 'x'), "fr", "en"});
    EXPECT_THAT(log.printed(), Contains("[TovikVoice] Translation: '" + source.substr(0, 100) + "' → '" +
                                        std::string(50, 'x') + "'"));
}

TEST_F(TranslatedDeliveryTest, aValueThatIsNoBoolean_meansOff) {
    defaults.set("TranslationEnabled", "true");
    delivery.handleTranscription("good morning");
    EXPECT_THAT(translator.texts, IsEmpty());
    EXPECT_THAT(pasteboard.texts(), ElementsAre("good morning"));
}

TEST_F(TranslatedDeliveryTest, whenTheOwnerIsGone_aLateTranslationPastesNothing) {
    auto shortLived = std::make_unique<TranscriptDelivery>(platform, mainWindow, permissionRequests, targets,
                                                           dictionary, history, translator);
    shortLived->handleTranscription("good morning");
    shortLived.reset();
    translator.answer(std::nullopt);
    finishPaste();
    EXPECT_THAT(pasteboard.texts(), IsEmpty());
}

// Pasting again.

TEST_F(TranscriptDeliveryTest, pasteLast_pressesAtOnceWhateverIsInFrontAndSaysNothing) {
    delivery.handleTranscription("hello");
    finishPaste();
    poster.posted.clear();
    workspace.calls.clear();
    const auto lines = log.printed().size();

    delivery.pasteLastTranscript();
    EXPECT_THAT(poster.posted, ElementsAre(sessionPasteDown, sessionPasteUp));
    EXPECT_THAT(pasteboard.texts(), ElementsAre("hello", "hello"));
    EXPECT_THAT(workspace.calls, IsEmpty());
    EXPECT_EQ(log.printed().size(), lines);
}

TEST_F(TranscriptDeliveryTest, pasteLastBeforeAnyTranscript_doesNothing) {
    delivery.pasteLastTranscript();
    EXPECT_THAT(pasteboard.texts(), IsEmpty());
    EXPECT_THAT(poster.posted, IsEmpty());
}

TEST_F(TranscriptDeliveryTest, pasteLastOfAnEmptyTranscript_doesNothing) {
    delivery.handleTranscription("");
    finishPaste();
    poster.posted.clear();
    delivery.pasteLastTranscript();
    EXPECT_THAT(poster.posted, IsEmpty());
}

TEST_F(TranscriptDeliveryTest, pasteLastWithoutAccessibility_leavesTheTextOnThePasteboard) {
    delivery.handleTranscription("hello");
    finishPaste();
    poster.posted.clear();
    authorization.setTrusted(false);
    delivery.pasteLastTranscript();
    EXPECT_THAT(pasteboard.texts(), ElementsAre("hello", "hello"));
    EXPECT_THAT(poster.posted, IsEmpty());
}

TEST_F(TranscriptDeliveryTest, pasteLastWhenKeysCannotBePressed_leavesTheTextOnThePasteboard) {
    delivery.handleTranscription("hello");
    finishPaste();
    poster.posted.clear();
    poster.canMakeKeyDown = false;
    poster.canMakeKeyUp = false;
    delivery.pasteLastTranscript();
    EXPECT_THAT(pasteboard.texts(), ElementsAre("hello", "hello"));
    EXPECT_THAT(poster.posted, IsEmpty());
}

TEST_F(TranscriptDeliveryTest, pasteLastWhenOnlyOneEventCanBeMade_postsThatOne) {
    delivery.handleTranscription("hello");
    finishPaste();
    poster.posted.clear();
    poster.canMakeKeyDown = false;
    delivery.pasteLastTranscript();
    EXPECT_THAT(poster.posted, ElementsAre(sessionPasteUp));
}

TEST_F(TranscriptDeliveryTest, pastingAnEarlierTranscript_makesItTheLastOne) {
    delivery.handleTranscription("new");
    finishPaste();
    poster.posted.clear();
    delivery.pasteTranscript("old\nwith two lines");
    EXPECT_EQ(delivery.lastTranscript(), "old\nwith two lines");
    EXPECT_EQ(pasteboard.contents(), "old\nwith two lines");
    EXPECT_THAT(poster.posted, ElementsAre(sessionPasteDown, sessionPasteUp));
}

TEST_F(TranscriptDeliveryTest, pastingAnEmptyEarlierTranscript_doesNothing) {
    delivery.pasteTranscript("");
    EXPECT_EQ(delivery.lastTranscript(), std::nullopt);
    EXPECT_THAT(pasteboard.texts(), IsEmpty());
}

} // namespace
} // namespace tovik
