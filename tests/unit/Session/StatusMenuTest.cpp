// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/StatusMenu.h"

#include "Audio/MacAudioManager.h"
#include "Session/PushToTalk.h"
#include "unit/Session/SessionFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace tovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> titles(const Menu& menu) {
    std::vector<std::string> result;
    for (const auto& item : menu.items()) {
        result.push_back(item.isSeparator ? "—" : item.title);
    }
    return result;
}

std::vector<std::size_t> checkedRows(const Menu& menu) {
    std::vector<std::size_t> rows;
    for (std::size_t i = 0; i < menu.items().size(); ++i) {
        if (menu.items()[i].isChecked) {
            rows.push_back(i);
        }
    }
    return rows;
}

/// As a view does it: the action may replace the item that holds it.
void choose(const Menu& menu, std::size_t row) {
    const auto action = menu.items().at(row).action;
    action();
}

// The whole menu.

class StatusMenuTest : public test::DeliveryFixture {
protected:
    MacAudioManager manager{{time, time, log, defaults, engine, devices, hardware, speech}, {}};
    PushToTalk pushToTalk{platform, permissionRequests, targets, recorder, statusItem, overlay};
    int quits = 0;
    StatusMenu statusMenu{platform, mainWindow, manager, pushToTalk, delivery, history, [this] { ++quits; }};
    const Menu& menu = *statusMenu.menu();
};

TEST_F(StatusMenuTest, hasItsRowsInOrder) {
    EXPECT_THAT(titles(menu), ElementsAre("Input Device", "Dictation Language", "—", "Paste Last Transcript",
                                          "Transcript History", "—", "Open Tovik Record", "Quit"));
    EXPECT_THAT(titles(*menu.items()[1].submenu), testing::Contains("🌐 Auto-detect"));
    EXPECT_EQ(menu.items()[0].action, nullptr);
    EXPECT_EQ(menu.items()[3].keyEquivalent, "");
    EXPECT_EQ(menu.items()[7].keyEquivalent, "q");
    choose(menu, 7);
    EXPECT_EQ(quits, 1);
}

TEST_F(StatusMenuTest, leadsToTheWindowAndToTheLastTranscript) {
    choose(menu, 6);
    EXPECT_EQ(mainWindow.presented(), 1);
    delivery.handleTranscription("said");
    pasteboard.replaceContents("something else");
    choose(menu, 3);
    EXPECT_EQ(pasteboard.contents(), "said");
}

TEST_F(StatusMenuTest, whenALanguageIsChosen_theRunningRecordingGoesOnInIt) {
    const auto& languages = *menu.items()[1].submenu;
    choose(languages, 4);
    EXPECT_THAT(recorder.calls, IsEmpty());
    pushToTalk.startRecording();
    choose(languages, 5);
    EXPECT_THAT(recorder.calls, ElementsAre("start", "stopAndListenOn", "start"));
}

TEST_F(StatusMenuTest, whenAnotherProcessChoosesALanguage_itIsChecked) {
    defaults.set("SelectedDictationLocale", "de-DE");
    statusMenu.showStoredChoices();
    EXPECT_THAT(checkedRows(*menu.items()[1].submenu), ElementsAre(6u));
}

// Dictation language.

class LanguageMenuTest : public test::SessionFixture {
protected:
    LanguageMenu makeMenu() {
        return LanguageMenu(defaults, log, mainWindow, [this] { ++restarts; });
    }
    int restarts = 0;
};

TEST_F(LanguageMenuTest, listsAutoDetectAndTheEightLanguages) {
    const auto menu = makeMenu();
    EXPECT_THAT(titles(*menu.menu()), ElementsAre("🌐 Auto-detect", "—", "🇺🇸 English (US)", "🇬🇧 English (UK)",
                                                  "🇫🇷 French", "🇪🇸 Spanish", "🇩🇪 German", "🇮🇹 Italian",
                                                  "🇨🇳 Chinese (Simplified)", "🇯🇵 Japanese"));
}

TEST_F(LanguageMenuTest, withoutAStoredChoice_autoDetectIsChecked) {
    const auto menu = makeMenu();
    EXPECT_THAT(checkedRows(*menu.menu()), ElementsAre(0u));
}

TEST_F(LanguageMenuTest, theStoredChoice_isChecked) {
    defaults.set("SelectedDictationLocale", "de-DE");
    const auto menu = makeMenu();
    EXPECT_THAT(checkedRows(*menu.menu()), ElementsAre(6u));
}

TEST_F(LanguageMenuTest, aStoredChoiceThatIsNotInTheTable_checksNothing) {
    defaults.set("SelectedDictationLocale", "pt-BR");
    const auto menu = makeMenu();
    EXPECT_THAT(checkedRows(*menu.menu()), IsEmpty());
}

TEST_F(LanguageMenuTest, choosingALanguage_storesChecksRestartsAndConfirms) {
    const auto menu = makeMenu();
    choose(*menu.menu(), 4);
    EXPECT_EQ(defaults.string("SelectedDictationLocale"), "fr-FR");
    EXPECT_THAT(checkedRows(*menu.menu()), ElementsAre(4u));
    EXPECT_EQ(restarts, 1);
    EXPECT_THAT(log.printed(), ElementsAre("[TovikVoice] Dictation language changed to: fr-FR"));
    EXPECT_THAT(mainWindow.toasts(), ElementsAre("Dictation language saved"));
}

TEST_F(LanguageMenuTest, choosingAutoDetect_removesTheStoredChoice) {
    defaults.set("SelectedDictationLocale", "de-DE");
    const auto menu = makeMenu();
    choose(*menu.menu(), 0);
    EXPECT_EQ(defaults.value("SelectedDictationLocale"), std::nullopt);
    EXPECT_THAT(checkedRows(*menu.menu()), ElementsAre(0u));
    EXPECT_THAT(log.printed(), ElementsAre("[TovikVoice] Dictation language changed to: Auto-detect"));
}

TEST_F(LanguageMenuTest, whenTheStoredChoiceChangesElsewhere_isCheckedAnew) {
    auto menu = makeMenu();
    defaults.set("SelectedDictationLocale", "de-DE");
    menu.showStoredChoice();
    EXPECT_THAT(checkedRows(*menu.menu()), ElementsAre(6u));
    defaults.remove("SelectedDictationLocale");
    menu.showStoredChoice();
    EXPECT_THAT(checkedRows(*menu.menu()), ElementsAre(0u));
    defaults.set("SelectedDictationLocale", "");
    menu.showStoredChoice();
    EXPECT_THAT(checkedRows(*menu.menu()), IsEmpty());
    EXPECT_EQ(restarts, 0);
    EXPECT_THAT(mainWindow.toasts(), IsEmpty());
}

// Transcript history.

class TranscriptHistoryMenuTest : public test::DeliveryFixture {};

TEST_F(TranscriptHistoryMenuTest, withoutTranscripts_saysSoInARowThatCannotBeChosen) {
    const TranscriptHistoryMenu menu(history, delivery, mainWindow);
    EXPECT_THAT(titles(*menu.menu()), ElementsAre("No transcripts yet"));
    EXPECT_FALSE(menu.menu()->items()[0].isEnabled);
    EXPECT_EQ(menu.menu()->items()[0].action, nullptr);
}

TEST_F(TranscriptHistoryMenuTest, eachTimeItOpens_showsTheNewestEight) {
    const TranscriptHistoryMenu menu(history, delivery, mainWindow);
    for (int i = 1; i <= 9; ++i) {
        history.add("text " + std::to_string(i));
    }
    menu.menu()->onWillOpen();
    EXPECT_THAT(titles(*menu.menu()),
                ElementsAre("text 9", "text 8", "text 7", "text 6", "text 5", "text 4", "text 3", "text 2"));
}

TEST_F(TranscriptHistoryMenuTest, wheneverTheHistoryTableIsReloaded_isMadeAnew) {
    const TranscriptHistoryMenu menu(history, delivery, mainWindow);
    history.add("text");
    mainWindow.reloadHistoryTable();
    EXPECT_THAT(titles(*menu.menu()), ElementsAre("text"));
}

TEST_F(TranscriptHistoryMenuTest, aLongText_isCutInTheTitleOnly) {
    const std::string fits(42, 'a');
    const std::string tooLong(43, 'b');
    history.add(fits);
    history.add(tooLong);
    const TranscriptHistoryMenu menu(history, delivery, mainWindow);
    EXPECT_THAT(titles(*menu.menu()), ElementsAre(std::string(42, 'b') + "...", fits));
    EXPECT_EQ(menu.menu()->items()[0].representedText, tooLong);
}

TEST_F(TranscriptHistoryMenuTest, withoutTheRightToPressKeys_theTextIsOnTheClipboardAllTheSame) {
    authorization.setTrusted(false);
    history.add("kept");
    const TranscriptHistoryMenu menu(history, delivery, mainWindow);
    choose(*menu.menu(), 0);
    EXPECT_EQ(pasteboard.contents(), "kept");
    EXPECT_THAT(poster.posted, IsEmpty());
}

TEST_F(TranscriptHistoryMenuTest, anEmptyText_isNotPasted) {
    defaults.set(TranscriptHistoryStore::storageKey,
                 PropertyValue::array({{{"text", ""}, {"createdAt", 1740837909.0}}}));
    history.load();
    const TranscriptHistoryMenu menu(history, delivery, mainWindow);
    choose(*menu.menu(), 0);
    EXPECT_EQ(pasteboard.contents(), std::nullopt);
    EXPECT_EQ(delivery.lastTranscript(), std::nullopt);
}

TEST_F(TranscriptHistoryMenuTest, choosingATextOfSeveralLines_pastesItUnchanged) {
    history.add("one\ntwo");
    const TranscriptHistoryMenu menu(history, delivery, mainWindow);
    EXPECT_THAT(titles(*menu.menu()), ElementsAre("one two"));
    choose(*menu.menu(), 0);
    EXPECT_EQ(pasteboard.contents(), "one\ntwo");
    EXPECT_EQ(delivery.lastTranscript(), "one\ntwo");
    EXPECT_EQ(poster.posted.size(), 2u);
}

// Input devices.

class InputDeviceMenuTest : public test::SessionFixture {
protected:
    InputDeviceMenuTest() {
        devices.setDevices({{"internal", "Built-in"}, {"usb", "USB Mic"}});
        devices.setDefaultDeviceId("internal");
        manager.emplace(MacAudioManager::Ports{time, time, log, defaults, engine, devices, hardware, speech},
                        MacAudioManager::Callbacks{});
        menu.emplace(time, log, mainWindow, *manager);
        time.runPending();
    }

    std::optional<MacAudioManager> manager;
    std::optional<InputDeviceMenu> menu;
};

TEST_F(InputDeviceMenuTest, listsEveryDeviceTwiceInARow) {
    EXPECT_THAT(titles(*menu->menu()), ElementsAre("Built-in", "Built-in", "USB Mic", "USB Mic"));
}

TEST_F(InputDeviceMenuTest, checksBothRowsOfTheCurrentDevice) {
    EXPECT_THAT(checkedRows(*menu->menu()), ElementsAre(0u, 1u));
}

TEST_F(InputDeviceMenuTest, aFreshList_checksTheRowAtTheDevicesPlaceInTheList) {
    ASSERT_TRUE(manager->selectDevice({"usb", "USB Mic"}).ok());
    time.runPending();
    menu->availableDevicesChanged(manager->audioDevices());
    time.runPending();
    EXPECT_THAT(checkedRows(*menu->menu()), ElementsAre(1u));
}

TEST_F(InputDeviceMenuTest, aReportOfWhatItShows_leavesAnOpenMenuInPeace) {
    const auto listed = manager->audioDevices();
    menu->availableDevicesChanged(listed);
    time.runPending();
    int changes = 0;
    const auto subscription = menu->menu()->observe([&] { ++changes; });
    menu->availableDevicesChanged(listed);
    menu->availableDevicesChanged(listed);
    time.runPending();
    EXPECT_EQ(changes, 0);
    auto renamed = listed;
    renamed.front().name = "Renamed";
    menu->availableDevicesChanged(renamed);
    time.runPending();
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(menu->menu()->items().front().title, "Renamed");
}

TEST_F(InputDeviceMenuTest, choosingADevice_selectsChecksAndConfirms) {
    choose(*menu->menu(), 3);
    time.runPending();
    EXPECT_EQ(manager->selectedDevice()->id, "usb");
    EXPECT_THAT(checkedRows(*menu->menu()), ElementsAre(2u, 3u));
    EXPECT_THAT(mainWindow.toasts(), ElementsAre("Input device saved"));
    EXPECT_THAT(log.printed(), testing::Contains("[TovikVoice] Selected audio device: USB Mic"));
}

TEST_F(InputDeviceMenuTest, aDeviceThatIsNoLongerThere_isRefusedAndTheMarksStay) {
    menu->selectAudioDevice({"gone", "Gone Mic"});
    EXPECT_THAT(log.printed(),
                testing::Contains("[TovikVoice] Failed to select audio device: Device not found"));
    EXPECT_THAT(mainWindow.toasts(), IsEmpty());
    EXPECT_THAT(checkedRows(*menu->menu()), ElementsAre(0u, 1u));
}

TEST_F(InputDeviceMenuTest, anEmptyList_leavesTheMenuEmpty) {
    menu->availableDevicesChanged({});
    time.runPending();
    EXPECT_THAT(titles(*menu->menu()), IsEmpty());
}

TEST_F(InputDeviceMenuTest, aReportOfNoDevice_changesNothing) {
    menu->currentDeviceChanged(std::nullopt);
    time.runPending();
    EXPECT_THAT(checkedRows(*menu->menu()), ElementsAre(0u, 1u));
}

TEST_F(InputDeviceMenuTest, reports_areShownOnTheMainQueueOnly) {
    menu->availableDevicesChanged({});
    EXPECT_EQ(menu->menu()->items().size(), 4u);
    time.runPending();
    EXPECT_EQ(menu->menu()->items().size(), 0u);
}

// Links.

class MakerLinksTest : public test::SessionFixture {
protected:
    MakerLinks links{workspace, mainWindow};
};

TEST_F(MakerLinksTest, updates_openTheDownloadPageAndSaySo) {
    links.openTovikVoiceUpdates();
    EXPECT_THAT(workspace.openedUrls, ElementsAre("https://tovik.example/voice#download"));
    EXPECT_THAT(mainWindow.toasts(), ElementsAre("Opening updates"));
}

TEST_F(MakerLinksTest, whenNothingOpensThem_saySo) {
    workspace.openingWorks = false;
    links.openTovikVoiceUpdates();
    EXPECT_THAT(mainWindow.toasts(), ElementsAre("Could not open updates"));
}

TEST_F(MakerLinksTest, withAHostThatNoAddressCanName_theUpdatesAreUnavailable) {
    for (const char* host : {"", "not a host", "tovik.example/other"}) {
        MakerLinks broken(workspace, mainWindow, host);
        broken.openTovikVoiceUpdates();
        broken.openTovikAIWebsite();
        EXPECT_EQ(mainWindow.toasts().back(), "Update link unavailable") << host;
    }
    EXPECT_THAT(workspace.openedUrls, IsEmpty());
}

TEST_F(MakerLinksTest, theWebSite_isOpenedWithoutAWord) {
    workspace.openingWorks = false;
    links.openTovikAIWebsite();
    EXPECT_THAT(workspace.openedUrls, ElementsAre("https://tovik.example/"));
    EXPECT_THAT(mainWindow.toasts(), IsEmpty());
}

} // namespace
} // namespace tovik
