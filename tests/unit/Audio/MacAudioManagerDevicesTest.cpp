// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "AudioManagerFixture.h"

namespace tovik::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr auto kChangeDetected = "[TovikVoice] Audio device change detected";

TEST(AudioDevice, isTheSameDeviceWhenTheIdIsTheSame) {
    EXPECT_EQ((AudioDevice{"a", "One"}), (AudioDevice{"a", "Other"}));
    EXPECT_NE((AudioDevice{"a", "One"}), (AudioDevice{"b", "One"}));
    EXPECT_TRUE((AudioDevice{"a", "One"}).isAvailable);
}

// ------------------------------------------------------------------------ list and selection

TEST_F(MacAudioManagerDevices, whenMade_listsTheMicrophonesInTheSystemsOrder) {
    devices.setDevices({usb, airPods, builtin});
    EXPECT_THAT(listedIds(), ElementsAre("usb", "pods", "builtin"));
    EXPECT_EQ(manager().audioDevices()[0].name, "Desk Microphone");
    EXPECT_TRUE(manager().audioDevices()[0].isAvailable);
}

TEST_F(MacAudioManagerDevices, whenMade_choosesTheDefaultDevice) {
    devices.setDefaultDeviceId("usb");
    EXPECT_EQ(selectedId(), "usb");
}

TEST_F(MacAudioManagerDevices, withoutADefaultDevice_theSelectionStaysAbsentAndTheDelegateHearsSo) {
    devices.setDefaultDeviceId(std::nullopt);
    followWithDelegate();
    time.runPending();
    EXPECT_EQ(selectedId(), "none");
    EXPECT_THAT(delegate->reports,
                ElementsAre("devices: builtin=Built-in Microphone usb=Desk Microphone", "current: none"));
}

TEST_F(MacAudioManagerDevices, whenTheDefaultDeviceIsNotListed_theSelectionStaysAbsent) {
    devices.setDefaultDeviceId("elsewhere");
    EXPECT_EQ(selectedId(), "none");
}

TEST_F(MacAudioManagerDevices, whenADefaultDeviceAppearsLater_itIsChosen) {
    devices.setDefaultDeviceId(std::nullopt);
    EXPECT_EQ(selectedId(), "none");
    devices.setDefaultDeviceId("usb");
    manager().refreshAudioDevices();
    EXPECT_EQ(selectedId(), "usb");
}

TEST_F(MacAudioManagerDevices, whenTheDefaultChanges_theSelectionStays) {
    EXPECT_EQ(selectedId(), "builtin");
    devices.setDefaultDeviceId("usb");
    manager().refreshAudioDevices();
    EXPECT_EQ(selectedId(), "builtin");
}

TEST_F(MacAudioManagerDevices, whenTheChosenDeviceIsRenamed_theSelectionKeepsItsOldRecord) {
    manager();
    devices.setDevices({{"builtin", "Renamed"}, usb});
    manager().refreshAudioDevices();
    EXPECT_EQ(manager().selectedDevice()->name, "Built-in Microphone");
    EXPECT_EQ(manager().audioDevices()[0].name, "Renamed");
}

TEST_F(MacAudioManagerDevices, whenTheChosenDeviceVanishes_theDefaultTakesItsPlaceAndTheDelegateHears) {
    followWithDelegate();
    ASSERT_TRUE(manager().selectDevice({"usb", "Desk Microphone"}).ok());
    time.runPending();
    delegate->reports.clear();
    forgetLines();
    devices.setDevices({builtin});
    manager().refreshAudioDevices();
    EXPECT_THAT(newLines(),
                ElementsAre("[TovikVoice] Selected audio device no longer available, switching to default"));
    time.runPending();
    EXPECT_THAT(delegate->reports, ElementsAre("devices: builtin=Built-in Microphone", "current: builtin"));
}

TEST_F(MacAudioManagerDevices, whenTheLastDeviceVanishes_theLastKnownDefaultStaysChosenAndIsReportedGone) {
    manager();
    devices.setDevices({});
    devices.setDefaultDeviceId(std::nullopt);
    forgetLines();
    manager().refreshAudioDevices();
    EXPECT_EQ(selectedId(), "builtin");
    EXPECT_THAT(listedIds(), IsEmpty());
    EXPECT_THAT(newLines(), SizeIs(1));
}

TEST_F(MacAudioManagerDevices, whenRefreshed_theDelegateHearsListThenSelectionOnTheMainQueue) {
    followWithDelegate();
    EXPECT_THAT(delegate->reports, IsEmpty());
    time.runPending();
    EXPECT_THAT(delegate->reports,
                ElementsAre("devices: builtin=Built-in Microphone usb=Desk Microphone", "current: builtin"));
}

TEST_F(MacAudioManagerDevices, whenTheWorldChangesBeforeTheReport_theReportTellsOfTheNewWorld) {
    followWithDelegate();
    devices.setDevices({usb});
    devices.setDefaultDeviceId("usb");
    manager().refreshAudioDevices();
    time.runPending();
    EXPECT_THAT(delegate->reports, ElementsAre("devices: usb=Desk Microphone", "current: usb",
                                               "devices: usb=Desk Microphone", "current: usb"));
}

TEST_F(MacAudioManagerDevices, whenTheDelegateIsGone_nothingIsReported) {
    followWithDelegate();
    dropDelegate();
    time.runPending();
    manager().refreshAudioDevices();
    time.runPending();
    EXPECT_EQ(selectedId(), "builtin");
}

TEST_F(MacAudioManagerDevices, whenTheManagerIsGone_queuedReportsAndTimersDoNothing) {
    followWithDelegate();
    devices.notifyConnected(airPods);
    destroyManager();
    forgetLines();
    time.advance(Seconds(20));
    EXPECT_THAT(delegate->reports, IsEmpty());
    EXPECT_THAT(newLines(), IsEmpty());
    EXPECT_FALSE(devices.isObserved());
    EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(MacAudioManagerDevices, everyFiveSeconds_theListIsReadAnew) {
    manager();
    EXPECT_EQ(hardware.scans(), 1);
    devices.setDevices({usb});
    time.advance(Seconds(4.9));
    EXPECT_THAT(listedIds(), ElementsAre("builtin", "usb"));
    time.advance(Seconds(0.1));
    EXPECT_THAT(listedIds(), ElementsAre("usb"));
    EXPECT_EQ(hardware.scans(), 2);
    time.advance(Seconds(10));
    EXPECT_EQ(hardware.scans(), 4);
}

// ------------------------------------------------------------------------------ notifications

TEST_F(MacAudioManagerDevices, whenADeviceComes_logsAndRefreshes) {
    manager();
    forgetLines();
    devices.connect(airPods);
    EXPECT_THAT(listedIds(), ElementsAre("builtin", "usb", "pods"));
    EXPECT_THAT(newLines(),
                ElementsAre(kChangeDetected,
                            "[TovikVoice] AirPods or Bluetooth device reconnected - attempting recovery"));
}

TEST_F(MacAudioManagerDevices, whenAWiredDeviceComes_noRecoveryIsScheduled) {
    manager();
    forgetLines();
    devices.connect({"line", "Line In"});
    EXPECT_THAT(newLines(), ElementsAre(kChangeDetected));
    time.advance(Seconds(2));
    EXPECT_EQ(hardware.scans(), 2);
}

TEST_F(MacAudioManagerDevices, whenChangesComeWithinTheCooldown_theyAreDropped) {
    manager();
    forgetLines();
    devices.connect({"one", "One"});
    time.advance(Seconds(1));
    devices.connect({"two", "Two"});
    EXPECT_THAT(newLines(), ElementsAre(kChangeDetected));
    EXPECT_THAT(listedIds(), Not(Contains("two")));
}

TEST_F(MacAudioManagerDevices, whenADroppedChangeWasADisconnect_itIsNotHandledLater) {
    manager();
    devices.connect({"one", "One"});
    time.advance(Seconds(1));
    devices.disconnect(usb);
    EXPECT_THAT(listedIds(), Contains("usb"));
    time.advance(Seconds(1));
    EXPECT_THAT(listedIds(), Contains("usb"));
}

TEST_F(MacAudioManagerDevices, whenChangesComeTwoSecondsApart_bothAreHandled) {
    manager();
    forgetLines();
    devices.connect({"one", "One"});
    time.advance(Seconds(2));
    devices.connect({"two", "Two"});
    EXPECT_THAT(newLines(), ElementsAre(kChangeDetected, kChangeDetected));
    EXPECT_THAT(listedIds(), Contains("two"));
}

TEST_F(MacAudioManagerDevices, whenTheCooldownEndsThisVeryMoment_theChangeIsHandled) {
    manager();
    forgetLines();
    devices.connect({"one", "One"});
    time.advance(Seconds(1.5));
    devices.connect({"two", "Two"});
    EXPECT_THAT(newLines(), ElementsAre(kChangeDetected, kChangeDetected));
}

TEST_F(MacAudioManagerDevices, whenAChangeIsDropped_theCooldownDoesNotBeginAnew) {
    manager();
    forgetLines();
    devices.connect({"one", "One"});
    time.advance(Seconds(1));
    devices.connect({"two", "Two"});
    time.advance(Seconds(0.6));
    devices.connect({"three", "Three"});
    EXPECT_THAT(newLines(), SizeIs(2));
}

TEST_F(MacAudioManagerDevices, whenTheClockIsPutBack_changesAreStillHandled) {
    manager();
    forgetLines();
    devices.connect({"one", "One"});
    time.pause(Seconds(-3600));
    devices.connect({"two", "Two"});
    EXPECT_THAT(newLines(), ElementsAre(kChangeDetected, kChangeDetected));
}

TEST_F(MacAudioManagerDevices, whenAHeadsetComes_recoveryRunsOnceMoreASecondLater) {
    manager();
    devices.connect(airPods);
    const auto scans = hardware.scans();
    time.advance(Seconds(0.9));
    EXPECT_EQ(hardware.scans(), scans);
    time.advance(Seconds(0.1));
    EXPECT_EQ(hardware.scans(), scans + 1);
}

struct HeadsetRow {
    const char* name;
    const char* deviceName;
    bool counts;
};

class HeadsetNames : public MacAudioManagerDevices, public testing::WithParamInterface<HeadsetRow> {};

TEST_P(HeadsetNames, decideWhetherAConnectionIsAReconnection) {
    manager();
    forgetLines();
    devices.connect({"new", GetParam().deviceName});
    EXPECT_EQ(newLines().size(), GetParam().counts ? 2U : 1U);
}

INSTANTIATE_TEST_SUITE_P(Rows, HeadsetNames,
                         testing::Values(HeadsetRow{"AirPods", "AirPods", true},
                                         HeadsetRow{"OwnedAirPods", "Ada's AirPods Pro", true},
                                         HeadsetRow{"Bluetooth", "Studio Bluetooth Mic", true},
                                         HeadsetRow{"LowerCaseAirPods", "airpods", false},
                                         HeadsetRow{"LowerCaseBluetooth", "bluetooth headset", false},
                                         HeadsetRow{"Built", "Built-in Microphone", false},
                                         HeadsetRow{"Nameless", "", false}),
                         [](const auto& row) { return row.param.name; });

// ------------------------------------------------------------------------- disconnection

TEST_F(MacAudioManagerDevices, whenTheChosenDeviceGoesWhileRecording_theRefreshMovesOnAndNothingRestarts) {
    ASSERT_TRUE(manager().selectDevice({"usb", "Desk Microphone"}).ok());
    startRecording();
    devices.disconnect(usb);
    EXPECT_EQ(selectedId(), "builtin");
    EXPECT_THAT(engine.calls(), IsEmpty());
    EXPECT_EQ(speech.utteranceCount(), 1U);
}

TEST_F(MacAudioManagerDevices, whenTheChosenDeviceIsStillListedAsItGoes_theRecordingRestarts) {
    startRecording();
    devices.notifyDisconnected(builtin);
    EXPECT_THAT(engine.calls(), ElementsAre("flush", "stop", "removeTap", "openAhead", "installTap(1024)",
                                            "prepare", "start"));
    EXPECT_EQ(speech.utteranceCount(), 2U);
    EXPECT_TRUE(speech.utterances()[0]->finished());
    EXPECT_TRUE(engine.isRunning());
}

TEST_F(MacAudioManagerDevices, whenTheLastKnownDefaultGoesAway_theRecordingRestarts) {
    startRecording();
    devices.disconnect(builtin);
    EXPECT_EQ(selectedId(), "builtin");
    EXPECT_EQ(speech.utteranceCount(), 2U);
    EXPECT_TRUE(engine.isRunning());
}

TEST_F(MacAudioManagerDevices, whenARestartAfterADisconnectFails_itIsLoggedAndTheEngineStaysStopped) {
    startRecording();
    engine.failStarts({"Sound", 5, "no microphone"});
    devices.notifyDisconnected(builtin);
    EXPECT_THAT(
        newLines(),
        ElementsAre(kChangeDetected, "[TovikVoice] Using selected audio device: Built-in Microphone",
                    "[TovikVoice] AVAudioEngine start failed: no microphone",
                    "[TovikVoice] Failed to restart recording after device disconnect: no microphone"));
    EXPECT_FALSE(engine.isRunning());
    EXPECT_FALSE(engine.isOpenAhead());
}

TEST_F(MacAudioManagerDevices, whenTheChosenDeviceGoesWhileIdle_nothingStarts) {
    manager();
    engine.forgetCalls();
    devices.notifyDisconnected(builtin);
    EXPECT_THAT(engine.calls(), IsEmpty());
}

TEST_F(MacAudioManagerDevices, whenAnotherDeviceGoesWhileRecording_nothingRestarts) {
    startRecording();
    devices.disconnect(usb);
    EXPECT_THAT(engine.calls(), IsEmpty());
}

TEST_F(MacAudioManagerDevices, whenADeviceComesWhileRecording_nothingRestarts) {
    startRecording();
    devices.notifyConnected(builtin);
    EXPECT_THAT(engine.calls(), IsEmpty());
}

// ---------------------------------------------------------------------------- the user's pick

TEST_F(MacAudioManagerDevices, whenADeviceIsPickedWhileIdle_onlySelectionAndLogChange) {
    followWithDelegate();
    time.runPending();
    delegate->reports.clear();
    forgetLines();
    engine.forgetCalls();
    EXPECT_TRUE(manager().selectDevice({"usb", "Desk Microphone"}).ok());
    EXPECT_EQ(selectedId(), "usb");
    EXPECT_THAT(newLines(), ElementsAre("[TovikVoice] Selected audio device: Desk Microphone"));
    EXPECT_THAT(engine.calls(), IsEmpty());
    EXPECT_THAT(delegate->reports, IsEmpty());
    time.runPending();
    EXPECT_THAT(delegate->reports, ElementsAre("current: usb"));
}

TEST_F(MacAudioManagerDevices, whenAnUnlistedDeviceIsPicked_failsAndChangesNothing) {
    followWithDelegate();
    time.runPending();
    delegate->reports.clear();
    forgetLines();
    const auto picked = manager().selectDevice({"gone", "Gone"});
    ASSERT_FALSE(picked.ok());
    EXPECT_EQ(picked.error(), (Error{"TovikVoice", 1, "Device not found"}));
    EXPECT_EQ(selectedId(), "builtin");
    EXPECT_THAT(newLines(), IsEmpty());
    time.runPending();
    EXPECT_THAT(delegate->reports, IsEmpty());
}

TEST_F(MacAudioManagerDevices, whenADeviceIsPickedWhileRecording_theRecordingRestarts) {
    startRecording();
    EXPECT_TRUE(manager().selectDevice({"usb", "Desk Microphone"}).ok());
    EXPECT_THAT(engine.calls(), ElementsAre("flush", "stop", "removeTap", "openAhead", "installTap(1024)",
                                            "prepare", "start"));
    EXPECT_THAT(newLines(), ElementsAre("[TovikVoice] Selected audio device: Desk Microphone",
                                        "[TovikVoice] Using selected audio device: Desk Microphone"));
    EXPECT_THAT(time.pauses(), ElementsAre(Seconds(0.1)));
    EXPECT_TRUE(speech.utterances()[0]->finished());
}

TEST_F(MacAudioManagerDevices, whenARestartAfterAPickFails_theErrorReachesTheCaller) {
    startRecording();
    const Error refused{"Sound", 5, "no microphone"};
    engine.failStarts(refused);
    const auto picked = manager().selectDevice({"usb", "Desk Microphone"});
    ASSERT_FALSE(picked.ok());
    EXPECT_EQ(picked.error(), refused);
    EXPECT_EQ(selectedId(), "usb");
}

TEST_F(MacAudioManagerDevices, whenARecordingRestarts_whatIsSpokenMeanwhileIsInOneOfTheTwo) {
    startRecording();
    std::vector<float> spoken(100, 0.5F);
    engine.hear(spoken);
    engine.onCall([&](const std::string& call) {
        if (call == "installTap(1024)") {
            engine.hear(std::vector<float>(200, 0.25F));
        }
    });
    EXPECT_TRUE(manager().selectDevice({"usb", "Desk Microphone"}).ok());
    engine.onCall(nullptr);
    manager().stop();
    EXPECT_EQ(speech.utterances()[0]->readSound(), spoken);
    EXPECT_EQ(speech.utterances()[1]->readSound(), std::vector<float>(200, 0.25F));
}

} // namespace
} // namespace tovik::test
