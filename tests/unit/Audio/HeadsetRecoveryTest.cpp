// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "AudioManagerFixture.h"

namespace tovik::test {
namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class HeadsetRecovery : public MacAudioManagerDevices {
protected:
    /// The first headset is there and a recording runs.
    void recordBesideHeadset() {
        devices.setDevices({builtin, airPods});
        startRecording();
        hardware.setDevices({"Speakers", "Ada's AirPods"});
    }
};

TEST_F(HeadsetRecovery, whileRecording_everyRefreshRestartsWithTheHeadset) {
    recordBesideHeadset();
    manager().refreshAudioDevices();
    EXPECT_EQ(selectedId(), "pods");
    EXPECT_THAT(engine.calls(), ElementsAre("flush", "stop", "removeTap", "openAhead", "installTap(1024)",
                                            "prepare", "start"));
    EXPECT_THAT(newLines(),
                ElementsAre("[TovikVoice] Found Bluetooth audio device: Ada's AirPods",
                            "[TovikVoice] Attempting to recover with AirPods/Bluetooth device: Ada's AirPods",
                            "[TovikVoice] Using selected audio device: Ada's AirPods"));
    engine.forgetCalls();
    time.advance(Seconds(5));
    EXPECT_THAT(engine.calls(), Contains("start"));
    EXPECT_EQ(speech.utteranceCount(), 3U);
    EXPECT_TRUE(speech.utterances()[1]->finished());
}

TEST_F(HeadsetRecovery, whileIdle_onlyTellsOfTheHeadset) {
    devices.setDevices({builtin, airPods});
    hardware.setDevices({"Ada's AirPods"});
    manager();
    EXPECT_THAT(log.printed(), ElementsAre("[TovikVoice] Found Bluetooth audio device: Ada's AirPods"));
    EXPECT_THAT(engine.calls(), IsEmpty());
    EXPECT_EQ(selectedId(), "builtin");
}

TEST_F(HeadsetRecovery, whenSeveralAreThereWhileIdle_tellsOfEach) {
    hardware.setDevices({"Ada's AirPods", "Speakers", "Bluetooth Speaker"});
    manager();
    EXPECT_THAT(log.printed(), ElementsAre("[TovikVoice] Found Bluetooth audio device: Ada's AirPods",
                                           "[TovikVoice] Found Bluetooth audio device: Bluetooth Speaker"));
}

TEST_F(HeadsetRecovery, runsBeforeTheListIsRead) {
    recordBesideHeadset();
    devices.setDevices({airPods, builtin});
    std::vector<std::string> listedAtRestart;
    engine.onCall([&](const std::string& call) {
        if (call == "stop") {
            listedAtRestart = listedIds();
        }
    });
    manager().refreshAudioDevices();
    engine.onCall(nullptr);
    EXPECT_THAT(listedAtRestart, ElementsAre("builtin", "pods"));
    EXPECT_THAT(listedIds(), ElementsAre("pods", "builtin"));
}

TEST_F(HeadsetRecovery, theSelectionChangesBetweenStopAndStart) {
    recordBesideHeadset();
    std::vector<std::string> selections;
    engine.onCall([&](const std::string& call) {
        if (call == "stop" || call == "prepare") {
            selections.push_back(call + " " + selectedId());
        }
    });
    manager().refreshAudioDevices();
    engine.onCall(nullptr);
    EXPECT_THAT(selections, ElementsAre("stop builtin", "prepare pods"));
}

TEST_F(HeadsetRecovery, whenTheHeadsetHasNoMicrophone_nothingRestarts) {
    startRecording();
    hardware.setDevices({"Bluetooth Speaker"});
    manager().refreshAudioDevices();
    EXPECT_THAT(engine.calls(), IsEmpty());
    EXPECT_THAT(newLines(), ElementsAre("[TovikVoice] Found Bluetooth audio device: Bluetooth Speaker"));
}

TEST_F(HeadsetRecovery, whenSeveralMicrophonesMatch_takesTheFirstWhoseNameContainsTheDevices) {
    devices.setDevices({builtin, {"second", "Ada's AirPods Hands-Free"}, airPods});
    startRecording();
    hardware.setDevices({"Ada's AirPods"});
    manager().refreshAudioDevices();
    EXPECT_EQ(selectedId(), "second");
    EXPECT_THAT(newLines(),
                Contains("[TovikVoice] Attempting to recover with AirPods/Bluetooth device: Ada's AirPods "
                         "Hands-Free"));
}

TEST_F(HeadsetRecovery, whenADevicesNameCannotBeRead_goesOnToTheNext) {
    devices.setDevices({builtin, airPods});
    startRecording();
    hardware.setDevices({std::nullopt, "Ada's AirPods"});
    manager().refreshAudioDevices();
    EXPECT_EQ(selectedId(), "pods");
}

TEST_F(HeadsetRecovery, whenOneRestarts_theOthersAreNotTried) {
    devices.setDevices({builtin, airPods, {"other", "Bluetooth Mic"}});
    startRecording();
    hardware.setDevices({"Ada's AirPods", "Bluetooth Mic"});
    manager().refreshAudioDevices();
    EXPECT_EQ(selectedId(), "pods");
    EXPECT_THAT(newLines(), Each(Not(HasSubstr("Bluetooth Mic"))));
}

TEST_F(HeadsetRecovery, whenOneDoesNotMatchAMicrophone_theNextIsTried) {
    devices.setDevices({builtin, {"other", "Bluetooth Mic"}});
    startRecording();
    hardware.setDevices({"Ada's AirPods", "Bluetooth Mic"});
    manager().refreshAudioDevices();
    EXPECT_EQ(selectedId(), "other");
}

TEST_F(HeadsetRecovery, whenTheRestartFails_saysSoAndOnlyTellsOfTheOthers) {
    devices.setDevices({builtin, airPods, {"other", "Bluetooth Mic"}});
    startRecording();
    hardware.setDevices({"Ada's AirPods", "Bluetooth Mic"});
    engine.failStarts({"Sound", 5, "busy"});
    manager().refreshAudioDevices();
    EXPECT_THAT(newLines(),
                ElementsAre("[TovikVoice] Found Bluetooth audio device: Ada's AirPods",
                            "[TovikVoice] Attempting to recover with AirPods/Bluetooth device: Ada's AirPods",
                            "[TovikVoice] Using selected audio device: Ada's AirPods",
                            "[TovikVoice] AVAudioEngine start failed: busy",
                            "[TovikVoice] Failed to restart with recovered AirPods: busy",
                            "[TovikVoice] Found Bluetooth audio device: Bluetooth Mic"));
    EXPECT_FALSE(engine.isRunning());
    EXPECT_EQ(selectedId(), "pods");
}

TEST_F(HeadsetRecovery, whenTheDeviceListCannotBeRead_saysTheStatusAndRefreshesAllTheSame) {
    hardware.failWith({"Sound", 560947818, "bad object"});
    manager();
    EXPECT_THAT(log.printed(), ElementsAre("[TovikVoice] Error getting CoreAudio device list: 560947818"));
    EXPECT_THAT(listedIds(), ElementsAre("builtin", "usb"));
}

TEST_F(HeadsetRecovery, whenTheDeviceListIsEmpty_isSilent) {
    manager();
    EXPECT_THAT(log.printed(), IsEmpty());
}

TEST_F(HeadsetRecovery, theDelegateHearsOfTheRecoveredDeviceAtTheNextRefreshOnly) {
    devices.setDevices({builtin, airPods});
    startRecording();
    devices.notifyConnected(airPods);
    followWithDelegate();
    time.runPending();
    delegate->reports.clear();
    hardware.setDevices({"Ada's AirPods"});
    time.advance(Seconds(1));
    EXPECT_EQ(selectedId(), "pods");
    EXPECT_THAT(delegate->reports, IsEmpty());
    time.advance(Seconds(4));
    EXPECT_THAT(delegate->reports, Contains("current: pods"));
}

TEST_F(HeadsetRecovery, whenAHeadsetReconnectsWhileRecording_restartsAtOnceAndASecondLater) {
    startRecording();
    hardware.setDevices({"Ada's AirPods"});
    devices.connect(airPods);
    EXPECT_EQ(speech.utteranceCount(), 2U);
    EXPECT_EQ(selectedId(), "pods");
    time.advance(Seconds(1));
    EXPECT_EQ(speech.utteranceCount(), 3U);
}

TEST_F(HeadsetRecovery, whenTheRecordingWasCut_theFirstTextIsStillDelivered) {
    recordBesideHeadset();
    manager().refreshAudioDevices();
    speech.utterances()[0]->deliverFinal("first half");
    manager().stop();
    speech.utterances()[1]->deliverFinal("second half");
    EXPECT_THAT(finals, ElementsAre("<first half>", "<second half>"));
}

} // namespace
} // namespace tovik::test
