// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// What every list of microphones, and of all sound devices, does: the real ones against both sound servers,
// and those of the tests.
#include "support/FakeSoundDevices.h"
#include "support/SoundRig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>

namespace {

using namespace tovik;
using namespace tovik::test;

const CaptureDevice kDesk{"desk", "Desk Mike"};
const CaptureDevice kWireless{"blue", "Studio Bluetooth Mic"};

/// A machine whose microphones a test plugs in and out.
class World {
public:
    virtual ~World() = default;
    virtual CaptureDevices& devices() = 0;
    virtual AudioHardware& hardware() = 0;
    virtual void plugIn(const CaptureDevice& device) = 0;
    virtual void unplug(const CaptureDevice& device) = 0;
    virtual void choose(const CaptureDevice& device) = 0;
    virtual void breakDown() = 0;
    /// Lets the main thread do what waits for it.
    virtual void runMainQueue() = 0;
};

class FakeWorld : public World {
public:
    CaptureDevices& devices() override { return devices_; }
    AudioHardware& hardware() override { return hardware_; }
    void plugIn(const CaptureDevice& device) override {
        devices_.connect(device);
        listHardware();
    }
    void unplug(const CaptureDevice& device) override {
        devices_.disconnect(device);
        listHardware();
    }
    void choose(const CaptureDevice& device) override { devices_.setDefaultDeviceId(device.uniqueId); }
    void breakDown() override {
        for (const auto& device : devices_.devices()) {
            devices_.disconnect(device);
        }
        hardware_.setDevices({});
    }
    void runMainQueue() override {}

private:
    void listHardware() {
        std::vector<std::optional<std::string>> names{"Loudspeaker"};
        for (const auto& device : devices_.devices()) {
            names.emplace_back(device.localizedName);
        }
        hardware_.setDevices(std::move(names));
    }

    FakeCaptureDevices devices_;
    FakeAudioHardware hardware_;
};

class ServerWorld : public World {
public:
    explicit ServerWorld(SoundServer::Kind kind) : server_(kind), rig_(server_) {
        server_.start();
        EXPECT_TRUE(eventually([this] { return rig_.isReady(); }));
        rig_.main.runPending();
    }
    CaptureDevices& devices() override { return rig_.devices; }
    AudioHardware& hardware() override { return rig_.devices; }
    void plugIn(const CaptureDevice& device) override {
        server_.plugIn(device.uniqueId, device.localizedName);
    }
    void unplug(const CaptureDevice& device) override { server_.unplug(device.uniqueId); }
    void choose(const CaptureDevice& device) override { server_.setDefaultSource(device.uniqueId); }
    void breakDown() override { server_.kill(); }
    void runMainQueue() override { rig_.main.runPending(); }

private:
    SoundServer server_;
    SoundRig rig_;
};

struct Kind {
    const char* name;
    std::unique_ptr<World> (*make)();
};

class SoundDevicesContract : public testing::TestWithParam<Kind> {
protected:
    SoundDevicesContract() : world(GetParam().make()) {
        connected = world->devices().onConnected([this](const CaptureDevice& device) {
            notices.push_back("+" + device.localizedName);
            listsAtNotice.push_back(world->devices().devices());
        });
        disconnected = world->devices().onDisconnected([this](const CaptureDevice& device) {
            notices.push_back("-" + device.localizedName);
            listsAtNotice.push_back(world->devices().devices());
        });
    }

    bool becomesTrue(const std::function<bool()>& holds) {
        return eventually([&] {
            world->runMainQueue();
            return holds();
        });
    }
    bool lists(const std::vector<CaptureDevice>& expected) {
        return becomesTrue([&] { return world->devices().devices() == expected; });
    }
    bool told(const std::vector<std::string>& expected) {
        return becomesTrue([&] { return notices == expected; });
    }
    std::multiset<std::string> hardwareNames() {
        std::multiset<std::string> names;
        const auto ids = world->hardware().deviceIds();
        for (const auto id : ids ? ids.value() : std::vector<std::uint32_t>{}) {
            names.insert(world->hardware().deviceName(id).value_or("(none)"));
        }
        return names;
    }

    std::unique_ptr<World> world;
    std::vector<std::string> notices;
    std::vector<std::vector<CaptureDevice>> listsAtNotice;
    Subscription connected;
    Subscription disconnected;
};

TEST_P(SoundDevicesContract, whenThereIsNone_listsNothingAndHasNoDefault) {
    EXPECT_TRUE(world->devices().devices().empty());
    EXPECT_EQ(world->devices().defaultDeviceId(), std::nullopt);
}

TEST_P(SoundDevicesContract, whenPluggedIn_isListedBeforeAnybodyIsTold) {
    world->plugIn(kDesk);
    ASSERT_TRUE(told({"+Desk Mike"}));
    EXPECT_EQ(listsAtNotice, (std::vector<std::vector<CaptureDevice>>{{kDesk}}));
    EXPECT_EQ(world->devices().devices(), std::vector<CaptureDevice>{kDesk});
}

TEST_P(SoundDevicesContract, whenUnplugged_isOffTheListBeforeAnybodyIsTold) {
    world->plugIn(kDesk);
    world->plugIn(kWireless);
    ASSERT_TRUE(told({"+Desk Mike", "+Studio Bluetooth Mic"}));
    world->unplug(kWireless);
    ASSERT_TRUE(told({"+Desk Mike", "+Studio Bluetooth Mic", "-Studio Bluetooth Mic"}));
    EXPECT_EQ(listsAtNotice.back(), std::vector<CaptureDevice>{kDesk});
}

TEST_P(SoundDevicesContract, whenChosen_isTheDefault) {
    world->plugIn(kDesk);
    world->plugIn(kWireless);
    world->choose(kWireless);
    EXPECT_TRUE(becomesTrue([this] { return world->devices().defaultDeviceId() == kWireless.uniqueId; }));
    world->choose(kDesk);
    EXPECT_TRUE(becomesTrue([this] { return world->devices().defaultDeviceId() == kDesk.uniqueId; }));
}

TEST_P(SoundDevicesContract, whenTheDefaultIsUnplugged_itIsNoLongerTheDefault) {
    world->plugIn(kDesk);
    world->choose(kDesk);
    ASSERT_TRUE(becomesTrue([this] { return world->devices().defaultDeviceId() == kDesk.uniqueId; }));
    world->unplug(kDesk);
    EXPECT_TRUE(becomesTrue([this] { return !world->devices().defaultDeviceId(); }));
}

TEST_P(SoundDevicesContract, whenASubscriptionHasEnded_itIsToldNoMore) {
    connected.end();
    world->plugIn(kDesk);
    ASSERT_TRUE(lists({kDesk}));
    world->unplug(kDesk);
    EXPECT_TRUE(told({"-Desk Mike"}));
}

TEST_P(SoundDevicesContract, whenASubscriptionEndsItselfWhileTold_theOthersAreStillTold) {
    int count = 0;
    Subscription once;
    once = world->devices().onConnected([&](const CaptureDevice&) {
        ++count;
        once.end();
    });
    std::vector<std::string> heard;
    const auto last = world->devices().onConnected(
        [&](const CaptureDevice& device) { heard.push_back(device.localizedName); });
    world->plugIn(kDesk);
    ASSERT_TRUE(told({"+Desk Mike"}));
    world->plugIn(kWireless);
    ASSERT_TRUE(told({"+Desk Mike", "+Studio Bluetooth Mic"}));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(heard, (std::vector<std::string>{"Desk Mike", "Studio Bluetooth Mic"}));
}

TEST_P(SoundDevicesContract, hardwareNamesEveryMicrophone_underANumberOfItsOwn) {
    world->plugIn(kDesk);
    world->plugIn(kWireless);
    ASSERT_TRUE(lists({kDesk, kWireless}));
    const auto names = hardwareNames();
    EXPECT_EQ(names.count("Desk Mike"), 1U);
    EXPECT_EQ(names.count("Studio Bluetooth Mic"), 1U);
    const auto ids = world->hardware().deviceIds();
    ASSERT_TRUE(ids.ok());
    EXPECT_EQ(std::set<std::uint32_t>(ids.value().begin(), ids.value().end()).size(), ids.value().size());
}

TEST_P(SoundDevicesContract, hardwareHasNoNameForADeviceThatIsNotThere) {
    EXPECT_EQ(world->hardware().deviceName(4000000001U), std::nullopt);
}

TEST_P(SoundDevicesContract, whenTheSoundSystemBreaksDown_allAreToldGoneAndHardwareListsNothing) {
    world->plugIn(kDesk);
    ASSERT_TRUE(told({"+Desk Mike"}));
    world->breakDown();
    EXPECT_TRUE(told({"+Desk Mike", "-Desk Mike"}));
    EXPECT_TRUE(world->devices().devices().empty());
    EXPECT_EQ(world->devices().defaultDeviceId(), std::nullopt);
    EXPECT_TRUE(hardwareNames().empty());
}

template <SoundServer::Kind kind>
std::unique_ptr<World> makeServerWorld() {
    return std::make_unique<ServerWorld>(kind);
}

INSTANTIATE_TEST_SUITE_P(
    Worlds, SoundDevicesContract,
    testing::Values(Kind{"Fake", [] { return std::unique_ptr<World>(std::make_unique<FakeWorld>()); }},
                    Kind{"PulseAudio", &makeServerWorld<SoundServer::Kind::pulseAudio>},
                    Kind{"PipeWire", &makeServerWorld<SoundServer::Kind::pipeWire>}),
    [](const auto& kind) { return std::string(kind.param.name); });

} // namespace
