// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/SoundRig.h"

#include <gtest/gtest.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <set>

namespace {

using namespace tovik;
using namespace tovik::test;

class PulseAudioDevicesOn : public testing::TestWithParam<SoundServer::Kind> {
protected:
    PulseAudioDevicesOn() : server(GetParam()) { server.start(); }

    void connect() {
        rig = std::make_unique<SoundRig>(server);
        connected = rig->devices.onConnected(
            [this](const CaptureDevice& device) { notices.push_back("+" + device.localizedName); });
        disconnected = rig->devices.onDisconnected(
            [this](const CaptureDevice& device) { notices.push_back("-" + device.localizedName); });
        ASSERT_TRUE(eventually([this] { return rig->isReady(); }));
        rig->main.runPending();
    }
    bool becomes(const std::vector<std::string>& names) {
        return eventually([&] {
            rig->main.runPending();
            return rig->names() == names;
        });
    }
    bool told(const std::vector<std::string>& expected) {
        return eventually([&] {
            rig->main.runPending();
            return notices == expected;
        });
    }
    void addOutput(const std::string& name, const std::string& description) {
        server.control({"load-module", "module-null-sink", "sink_name=" + name,
                        "sink_properties=\"device.description='" + description + "'\""});
    }

    SoundServer server;
    std::unique_ptr<SoundRig> rig;
    std::vector<std::string> notices;
    Subscription connected;
    Subscription disconnected;
};

TEST_P(PulseAudioDevicesOn, listsMicrophonesByTheNameAndDescriptionOfTheirSource) {
    server.plugIn("desk", "Desk Mike");
    server.plugIn("lap", "Lap Mike");
    connect();
    EXPECT_TRUE(becomes({"Desk Mike", "Lap Mike"}));
    EXPECT_EQ(rig->devices.devices().front(), (CaptureDevice{"desk", "Desk Mike"}));
}

TEST_P(PulseAudioDevicesOn, whenThereIsNoHardware_listsNothing_andHasNoDefault) {
    connect();
    EXPECT_TRUE(becomes({}));
    EXPECT_EQ(rig->devices.defaultDeviceId(), std::nullopt);
    const auto& access = rig->devices;
    EXPECT_EQ(access.microphoneStatus(), MicrophoneStatus::restricted);
    EXPECT_FALSE(access.microphoneExplanation().empty());
    const auto started = rig->engine.start();
    ASSERT_FALSE(started.ok());
    EXPECT_EQ(started.error().description, "There is no microphone");
}

TEST_P(PulseAudioDevicesOn, whenThereIsAMicrophone_accessIsAuthorized) {
    server.plugIn("desk", "Desk Mike");
    connect();
    const auto& access = rig->devices;
    EXPECT_EQ(access.microphoneStatus(), MicrophoneStatus::authorized);
    EXPECT_EQ(access.microphoneExplanation(), "");
}

TEST_P(PulseAudioDevicesOn, monitorsOfOutputsAreListedOnlyWhereAskedForOrNothingElseExists) {
    addOutput("speaker", "Speaker");
    connect();
    EXPECT_TRUE(becomes({"Monitor of Speaker"}));
    server.plugIn("desk", "Desk Mike");
    EXPECT_TRUE(becomes({"Desk Mike"}));
    rig->defaults.set("platform.listMonitors", true);
    const auto names = rig->names();
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()),
              (std::set<std::string>{"Desk Mike", "Monitor of Speaker"}));
}

TEST_P(PulseAudioDevicesOn, whatIsThereAtFirst_isToldAsConnected) {
    server.plugIn("desk", "Desk Mike");
    connect();
    EXPECT_TRUE(told({"+Desk Mike"}));
}

TEST_P(PulseAudioDevicesOn, pluggingInAndOut_isToldOnceEach_afterTheListHasChanged) {
    server.plugIn("desk", "Desk Mike");
    connect();
    ASSERT_TRUE(told({"+Desk Mike"}));
    notices.clear();
    std::vector<std::vector<std::string>> lists;
    const auto watching =
        rig->devices.onConnected([&](const CaptureDevice&) { lists.push_back(rig->names()); });
    server.plugIn("blue", "Studio Bluetooth Mic");
    EXPECT_TRUE(told({"+Studio Bluetooth Mic"}));
    EXPECT_EQ(lists, (std::vector<std::vector<std::string>>{{"Desk Mike", "Studio Bluetooth Mic"}}));
    server.unplug("blue");
    EXPECT_TRUE(told({"+Studio Bluetooth Mic", "-Studio Bluetooth Mic"}));
    EXPECT_TRUE(becomes({"Desk Mike"}));
}

TEST_P(PulseAudioDevicesOn, noticesComeOnTheMainThreadOnly) {
    connect();
    std::thread::id thread;
    const auto watching =
        rig->devices.onConnected([&](const CaptureDevice&) { thread = std::this_thread::get_id(); });
    server.plugIn("desk", "Desk Mike");
    ASSERT_TRUE(eventually([this] { return rig->names().size() == 1; }));
    EXPECT_EQ(thread, std::thread::id());
    EXPECT_TRUE(told({"+Desk Mike"}));
    EXPECT_EQ(thread, std::this_thread::get_id());
}

TEST_P(PulseAudioDevicesOn, theDefaultIsTheServersOwn_alsoAfterAChange) {
    server.plugIn("desk", "Desk Mike");
    server.plugIn("lap", "Lap Mike");
    server.setDefaultSource("lap");
    connect();
    EXPECT_TRUE(rig->waitForDefault("lap"));
    server.setDefaultSource("desk");
    EXPECT_TRUE(rig->waitForDefault("desk"));
}

TEST_P(PulseAudioDevicesOn, hardwareListsInputsAndOutputs_eachWithANumberOfItsOwn) {
    server.plugIn("desk", "Desk Mike");
    addOutput("speaker", "Speaker");
    connect();
    ASSERT_TRUE(becomes({"Desk Mike"}));
    const auto ids = rig->devices.deviceIds();
    ASSERT_TRUE(ids.ok());
    std::multiset<std::string> names;
    for (const auto id : ids.value()) {
        names.insert(rig->devices.deviceName(id).value_or("(none)"));
    }
    EXPECT_EQ(names.count("Desk Mike"), 1U);
    EXPECT_EQ(names.count("Speaker"), 1U);
    EXPECT_EQ(std::set<std::uint32_t>(ids.value().begin(), ids.value().end()).size(), ids.value().size());
    EXPECT_EQ(rig->devices.deviceName(4000000001U), std::nullopt);
}

TEST_P(PulseAudioDevicesOn, whenTheServerIsAway_hardwareListsNothing_andAllDevicesAreToldGone) {
    server.plugIn("desk", "Desk Mike");
    connect();
    ASSERT_TRUE(told({"+Desk Mike"}));
    server.kill();
    EXPECT_TRUE(told({"+Desk Mike", "-Desk Mike"}));
    EXPECT_TRUE(rig->devices.devices().empty());
    const auto ids = rig->devices.deviceIds();
    ASSERT_TRUE(ids.ok());
    EXPECT_TRUE(ids.value().empty());
    const auto& access = rig->devices;
    EXPECT_EQ(access.microphoneStatus(), MicrophoneStatus::unknown);
    EXPECT_FALSE(access.microphoneExplanation().empty());
}

TEST_P(PulseAudioDevicesOn, whenASubscriptionHasEnded_itIsNotTold) {
    connect();
    connected.end();
    server.plugIn("desk", "Desk Mike");
    ASSERT_TRUE(becomes({"Desk Mike"}));
    rig->main.runPending();
    EXPECT_TRUE(notices.empty());
}

TEST_P(PulseAudioDevicesOn, whenTheListIsDestroyed_noticesOnTheirWayAreDropped) {
    RecordingLog log;
    ManualTime main;
    const MemoryUserDefaults defaults;
    PulseAudioConnection connection(log, server.address());
    auto devices = std::make_unique<PulseAudioDevices>(connection, main, defaults);
    int count = 0;
    auto watching = devices->onConnected([&](const CaptureDevice&) { ++count; });
    server.plugIn("desk", "Desk Mike");
    ASSERT_TRUE(eventually([&] { return devices->devices().size() == 1; }));
    devices.reset();
    main.runPending();
    EXPECT_EQ(count, 0);
}

INSTANTIATE_TEST_SUITE_P(Servers, PulseAudioDevicesOn,
                         testing::Values(SoundServer::Kind::pulseAudio, SoundServer::Kind::pipeWire),
                         [](const auto& kind) { return nameOf(kind.param); });

} // namespace
