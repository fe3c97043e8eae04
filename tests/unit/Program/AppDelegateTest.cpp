// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "AppDelegate.h"

#include "Speech/History/TranscriptHistoryBrowser.h"
#include "support/FakePlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <thread>

namespace tovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const RunningApplication editor{"org.editor", 100, "Editor", 7};
constexpr auto kDebugLog = "/home/ada/.local/state/tovik-record/tovik_record_debug.log";
constexpr auto kStateFile = "/home/ada/.local/share/Tovik/capture-state.json";

class AppDelegateTest : public testing::Test, protected test::FakePlatform {
protected:
    void launch() {
        make();
        delegate->applicationDidFinishLaunching();
        time.runPending();
    }

    void make() { delegate = std::make_unique<AppDelegate>(platform); }

    /// The recognizer answers the newest utterance, on a thread of its own.
    void recognize(const std::string& text) {
        std::thread([utterance = speech.lastUtterance(), text] { utterance->deliverFinal(text); }).join();
        time.runPending();
    }

    std::unique_ptr<AppDelegate> delegate;
};

// The launch.

TEST_F(AppDelegateTest, launch_leavesItsTraceInOrder) {
    launch();
    EXPECT_THAT(log.logged(),
                ElementsAre("[TovikVoice] AppDelegate.init() called",
                            "[TovikVoice] applicationDidFinishLaunching started",
                            "[TovikVoice] Status item created",
                            "[TovikVoice] applicationDidFinishLaunching finished successfully"));
    EXPECT_EQ(files.contentOf(kDebugLog),
              "[2025-03-01 14:05:09 +0000] applicationDidFinishLaunching started\n"
              "[2025-03-01 14:05:09 +0000] Status item created\n"
              "[2025-03-01 14:05:09 +0000] applicationDidFinishLaunching finished successfully\n");
    EXPECT_THAT(log.printed(), IsEmpty());
}

TEST_F(AppDelegateTest, launch_beginsWithTheStatusItemAndListensToKeysOnceTheMainWindowIsThere) {
    std::vector<std::string> made;
    userInterface.onCall = [&made](const std::string& call) { made.push_back(call); };
    keyMonitor.onStart = [&made] { made.emplace_back("key monitor"); };
    launch();
    ASSERT_GE(made.size(), 3U);
    EXPECT_EQ(made.front(), "makeStatusItem");
    EXPECT_EQ(made[made.size() - 2], "makeMainWindow");
    EXPECT_EQ(made.back(), "key monitor");
    EXPECT_EQ(keyMonitor.startCount, 1);
}

TEST_F(AppDelegateTest, statusItem_showsTheProgramAndItsMenu) {
    launch();
    EXPECT_EQ(userInterface.statusItem->image(),
              (StatusImage{StatusImage::Kind::applicationIcon, "AppIcon", "Tovik Record", 18}));
    EXPECT_THAT(userInterface.statusItem->toolTips(), ElementsAre("Tovik Record"));
    ASSERT_NE(userInterface.statusItem->menu(), nullptr);
    EXPECT_EQ(userInterface.statusItem->menu()->items().size(), 8u);
    EXPECT_EQ(userInterface.windowContents->statusMenu, userInterface.statusItem->menu());
}

TEST_F(AppDelegateTest, withoutATray_saysSoAndGoesOn) {
    userInterface.hasTray = false;
    launch();
    EXPECT_THAT(log.logged(), testing::Contains("[TovikVoice] FAILED to get status item button"));
    EXPECT_NE(userInterface.mainWindow, nullptr);
}

TEST_F(AppDelegateTest, launch_asksForNothingAndRecordsNothing) {
    authorization.setMicrophoneStatus(0);
    authorization.setSpeechStatus(0);
    authorization.setTrusted(false);
    launch();
    EXPECT_EQ(authorization.openMicrophoneRequests(), 0u);
    EXPECT_EQ(authorization.openSpeechRequests(), 0u);
    EXPECT_EQ(authorization.trustPrompts(), 0);
    EXPECT_FALSE(engine.isRunning());
    EXPECT_FALSE(files.exists(kStateFile));
}

TEST_F(AppDelegateTest, whenTheTalkKeyCannotBeSeen_saysWhy) {
    keyMonitor.failure = Error{"X11", 1, "This X server has no XInput 2."};
    launch();
    EXPECT_THAT(log.printed(),
                ElementsAre("[TovikVoice] Talk key unavailable: This X server has no XInput 2."));
}

// A whole dictation.

TEST_F(AppDelegateTest, holdingTheKeyAndSpeaking_bringsTheTextToTheEditor) {
    launch();
    workspace.bringToFront(editor);
    keyMonitor.pressTalkKey();
    EXPECT_TRUE(engine.isRunning());
    EXPECT_TRUE(files.exists(kStateFile));
    engine.hearConstant(0.1F, 2048);
    time.runPending();
    EXPECT_EQ(userInterface.overlay->levels.size(), 2u);

    keyMonitor.releaseTalkKey();
    EXPECT_FALSE(engine.isRunning());
    EXPECT_FALSE(files.exists(kStateFile));
    recognize("bot to bot,right");
    EXPECT_EQ(pasteboard.contents(), "Tovik Record, right");

    time.advance(Seconds(0.28));
    EXPECT_EQ(workspace.activated.back().application, editor);
    EXPECT_EQ(poster.posted.size(), 2u);
    EXPECT_EQ(defaults.value("transcription.history")->size(), 1u);
}

TEST_F(AppDelegateTest, withTranslationOn_bringsTheTranslationAndKeepsBoth) {
    defaults.set("TranslationEnabled", true);
    translation.answers.emplace(TranslationPair{"en", "es"}, TranslationAvailability::installed);
    translation.phrases = std::map<std::string, std::string>{{"good morning", "buenos días"}};
    launch();
    workspace.bringToFront(editor);
    keyMonitor.pressTalkKey();
    keyMonitor.releaseTalkKey();
    recognize("good morning");
    time.advance(Seconds(0.28));
    EXPECT_EQ(pasteboard.contents(), "buenos días");
    EXPECT_EQ(poster.posted.size(), 2u);
    EXPECT_EQ(defaults.value("transcription.history")->at(0).at("text"), "good morning");
    // "Paste Last Transcript".
    userInterface.statusItem->menu()->items().at(3).action();
    EXPECT_EQ(pasteboard.contents(), "buenos días\n[good morning]");
}

TEST_F(AppDelegateTest, wordsSpokenDuringTheGuardTime_areTheBeginningOfTheRecording) {
    launch();
    keyMonitor.touchTalkKey();
    engine.hearConstant(0.5F, 1024);
    keyMonitor.confirmTalkKey();
    engine.hearConstant(0.25F, 1024);
    keyMonitor.releaseTalkKey();
    const auto sound = speech.lastUtterance()->readSound();
    ASSERT_EQ(sound.size(), 2048u);
    EXPECT_EQ(sound.front(), 0.5F);
    EXPECT_EQ(sound.back(), 0.25F);
}

TEST_F(AppDelegateTest, whenTheTalkKeyBegetsAShortcut_nothingIsRecordedAndTheMicrophoneIsClosed) {
    launch();
    keyMonitor.touchTalkKey();
    EXPECT_TRUE(engine.isOpenAhead());
    keyMonitor.dismissTalkKey();
    EXPECT_FALSE(engine.isOpenAhead());
    EXPECT_EQ(speech.utteranceCount(), 0u);
    EXPECT_THAT(pasteboard.texts(), IsEmpty());
}

TEST_F(AppDelegateTest, silence_pastesNothing) {
    launch();
    workspace.bringToFront(editor);
    keyMonitor.pressTalkKey();
    keyMonitor.releaseTalkKey();
    speech.lastUtterance()->deliverError(Error{"PocketSphinx", 1, "No speech detected"});
    time.advance(Seconds(1));
    EXPECT_THAT(pasteboard.texts(), IsEmpty());
    EXPECT_THAT(poster.posted, IsEmpty());
    EXPECT_THAT(log.printed(), testing::Contains("[TovikVoice] Transcription error: No speech detected"));
}

TEST_F(AppDelegateTest, aTextThatArrivesWhileTheNextRecordingRuns_isPastedAllTheSame) {
    launch();
    workspace.bringToFront(editor);
    keyMonitor.pressTalkKey();
    keyMonitor.releaseTalkKey();
    const auto first = speech.lastUtterance();
    keyMonitor.pressTalkKey();
    first->deliverFinal("first");
    time.advance(Seconds(0.28));
    EXPECT_EQ(pasteboard.contents(), "first");
    EXPECT_EQ(poster.posted.size(), 2u);
    EXPECT_TRUE(engine.isRunning());
}

TEST_F(AppDelegateTest, partialResults_areShownNowhere) {
    launch();
    keyMonitor.pressTalkKey();
    speech.lastUtterance()->deliverPartial("half a sen");
    time.advance(Seconds(1));
    EXPECT_THAT(pasteboard.texts(), IsEmpty());
    EXPECT_THAT(log.printed(), testing::Not(testing::Contains(testing::HasSubstr("half a sen"))));
}

TEST_F(AppDelegateTest, changingTheLanguageWhileRecording_deliversTheFirstPartAndGoesOnInTheNewLanguage) {
    launch();
    speech.setLocale("fr-FR", test::FakeSpeechService::Locale::available);
    keyMonitor.pressTalkKey();
    const auto first = speech.lastUtterance();
    ASSERT_TRUE(userInterface.statusItem->choose({"Dictation Language", "🇫🇷 French"}));
    EXPECT_TRUE(engine.isRunning());
    EXPECT_EQ(speech.lastUtterance()->localeIdentifier(), "fr-FR");
    first->deliverFinal("first part");
    time.runPending();
    EXPECT_EQ(pasteboard.contents(), "first part");
}

TEST_F(AppDelegateTest, wordsSpokenWhileTheLanguageChanges_areTheBeginningOfTheNextPart) {
    launch();
    speech.setLocale("fr-FR", test::FakeSpeechService::Locale::available);
    keyMonitor.pressTalkKey();
    engine.hearConstant(0.25F, 1024);
    engine.onCall([this](const std::string& call) {
        if (call == "prepare") {
            engine.hearConstant(0.5F, 1600);
        }
    });
    ASSERT_TRUE(userInterface.statusItem->choose({"Dictation Language", "🇫🇷 French"}));
    keyMonitor.releaseTalkKey();
    EXPECT_THAT(speech.utterances().front()->readSound(), SizeIs(1024));
    EXPECT_THAT(speech.lastUtterance()->readSound(), SizeIs(1600));
}

// The end.

TEST_F(AppDelegateTest, quittingWhenIdle_endsTheProgramAtOnce) {
    launch();
    ASSERT_TRUE(userInterface.statusItem->choose({"Quit"}));
    EXPECT_EQ(terminations, 1);
}

TEST_F(AppDelegateTest, quittingBeforeTheLaunch_endsTheProgramAtOnce) {
    make();
    delegate->quitApp();
    EXPECT_EQ(terminations, 1);
}

TEST_F(AppDelegateTest, quittingWhileATextIsBeingRecognized_deliversItFirst) {
    launch();
    keyMonitor.pressTalkKey();
    keyMonitor.releaseTalkKey();
    ASSERT_TRUE(userInterface.statusItem->choose({"Quit"}));
    time.advance(Seconds(1));
    EXPECT_EQ(terminations, 0);
    recognize("last words");
    time.advance(Seconds(1));
    EXPECT_EQ(terminations, 1);
    EXPECT_EQ(pasteboard.contents(), "last words");
    EXPECT_EQ(defaults.value("transcription.history")->at(0).at("text"), "last words");
    EXPECT_THAT(poster.posted, SizeIs(2));
}

TEST_F(AppDelegateTest, quittingWhileRecording_deliversWhatWasSpokenAndLeavesTheStateFileBehind) {
    launch();
    keyMonitor.pressTalkKey();
    ASSERT_TRUE(userInterface.statusItem->choose({"Quit"}));
    EXPECT_FALSE(engine.isRunning());
    EXPECT_EQ(userInterface.overlay->calls.back(), "hide");
    keyMonitor.releaseTalkKey();
    recognize("half a sentence");
    time.advance(Seconds(1));
    EXPECT_EQ(terminations, 1);
    EXPECT_EQ(pasteboard.contents(), "half a sentence");
    delegate.reset();
    EXPECT_TRUE(files.exists(kStateFile));
}

TEST_F(AppDelegateTest, onceQuitting_theTalkKeyBeginsNothing) {
    launch();
    keyMonitor.pressTalkKey();
    keyMonitor.releaseTalkKey();
    ASSERT_TRUE(userInterface.statusItem->choose({"Quit"}));
    keyMonitor.pressTalkKey();
    EXPECT_FALSE(engine.isRunning());
    EXPECT_EQ(speech.utteranceCount(), 1u);
}

TEST_F(AppDelegateTest, aTextThatArrivesAfterTheEnd_isDropped) {
    launch();
    keyMonitor.pressTalkKey();
    const auto utterance = speech.lastUtterance();
    delegate.reset();
    utterance->deliverFinal("late");
    time.advance(Seconds(1));
    EXPECT_THAT(pasteboard.texts(), IsEmpty());
}

// The main window.

TEST_F(AppDelegateTest, theWindowEndsWhileWhatItShowsIsStillThere) {
    defaults.set("transcription.history",
                 PropertyValue::array({{{"text", "said before"}, {"createdAt", 1740837909.5}}}));
    launch();
    auto& history = userInterface.windowContents->history;
    history.reload();
    std::string shown;
    userInterface.mainWindow->onEnd = [&] {
        // As a list does that is drawn anew when it loses the keyboard.
        for (const auto& row : history.filteredHistoryEntries()) {
            shown += row.entry.text;
        }
    };
    delegate.reset();
    EXPECT_EQ(shown, "said before");
}

TEST_F(AppDelegateTest, openingFromTheMenu_presentsTheWindow) {
    launch();
    ASSERT_TRUE(userInterface.statusItem->choose({"Open Tovik Record"}));
    EXPECT_EQ(userInterface.mainWindow->presented(), 1);
}

TEST_F(AppDelegateTest, reopening_presentsTheWindowWhateverIsVisible) {
    launch();
    EXPECT_TRUE(delegate->applicationShouldHandleReopen(true));
    EXPECT_TRUE(delegate->applicationShouldHandleReopen(false));
    EXPECT_EQ(userInterface.mainWindow->presented(), 2);
}

TEST_F(AppDelegateTest, becomingActive_refreshesThePermissions) {
    launch();
    const auto before = userInterface.mainWindow->permissionRefreshes();
    delegate->applicationDidBecomeActive();
    EXPECT_EQ(userInterface.mainWindow->permissionRefreshes(), before + 1);
}

TEST_F(AppDelegateTest, whenAnotherProcessChangesTheHistory_theWindowAndTheMenuShowIt) {
    launch();
    defaultsChanges.announce();
    EXPECT_EQ(userInterface.mainWindow->historyReloads(), 0);
    defaults.set("transcription.history",
                 PropertyValue::array({{{"text", "said elsewhere"}, {"createdAt", 1740837909.5}}}));
    defaultsChanges.announce();
    defaultsChanges.announce();
    EXPECT_EQ(userInterface.mainWindow->historyReloads(), 1);
    userInterface.windowContents->history.reload();
    ASSERT_TRUE(userInterface.windowContents->history.copyRow(0));
    EXPECT_EQ(pasteboard.contents(), "said elsewhere");
    userInterface.statusItem->openMenu("Transcript History");
    EXPECT_TRUE(userInterface.statusItem->choose({"Transcript History", "said elsewhere"}));
}

TEST_F(AppDelegateTest, closingTheLastWindow_doesNotEndTheProgram) {
    launch();
    EXPECT_FALSE(delegate->applicationShouldTerminateAfterLastWindowClosed());
}

} // namespace
} // namespace tovik
