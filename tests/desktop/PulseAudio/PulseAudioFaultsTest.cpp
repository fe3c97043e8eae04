// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "BrokenServer.h"
#include "support/SoundRig.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <fstream>
#include <memory>
#include <thread>

namespace {

using namespace tovik;
using namespace tovik::test;
using Time = std::chrono::steady_clock;

constexpr std::chrono::seconds kFoundWithin{1};
// What the main thread may spend in one call; a tenth of it is usual under load.
constexpr std::chrono::milliseconds kAtOnce{100};

/// A port of this machine on which nobody listens.
unsigned freePort() {
    const int probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    EXPECT_EQ(bind(probe, reinterpret_cast<const sockaddr*>(&address), size), 0);
    EXPECT_EQ(getsockname(probe, reinterpret_cast<sockaddr*>(&address), &size), 0);
    close(probe);
    return ntohs(address.sin_port);
}

class PulseAudioFaultsOn : public testing::TestWithParam<SoundServer::Kind> {
protected:
    PulseAudioFaultsOn() : server(GetParam()), rig(server) {}

    void startServer() {
        server.start();
        mike = &server.plugIn("mike", "Mike");
        server.setDefaultSource("mike");
        ASSERT_TRUE(rig.waitForDefault("mike"));
    }
    void record() {
        rig.engine.installTap(1024, listener.tap());
        const auto started = rig.engine.start();
        ASSERT_TRUE(started.ok()) << started.error().description;
        ASSERT_TRUE(listener.waitFor(1024));
    }
    void speak(VirtualMicrophone& microphone, const std::vector<float>& samples) {
        microphone.speak(samples);
        microphone.waitUntilSilent();
        ASSERT_TRUE(listener.waitForMore(std::size_t{10} * 1024));
        rig.engine.flush();
    }
    // The server has chosen another microphone, and leads the recording over to it a moment later.
    void expectToHearAtLast(VirtualMicrophone& microphone, const std::vector<float>& samples) {
        EXPECT_TRUE(eventually([&] {
            speak(microphone, samples);
            return listener.heard(samples);
        }));
    }
    void expectADictationWorks() {
        rig.engine.stop();
        rig.engine.removeTap();
        listener.forget();
        record();
        speak(*mike, words(4800, 7));
        EXPECT_TRUE(listener.heard(words(4800, 7)));
        rig.engine.stop();
        rig.engine.removeTap();
    }

    SoundServer server;
    SoundRig rig;
    Listener listener;
    VirtualMicrophone* mike = nullptr;
};

TEST_P(PulseAudioFaultsOn, whenTheServerIsAbsentAtLaunch_startSaysSo_andItIsFoundLater) {
    ASSERT_TRUE(
        eventually([this] { return rig.connection.status().state == SoundServerStatus::State::absent; }));
    const auto started = rig.engine.start();
    ASSERT_FALSE(started.ok());
    EXPECT_EQ(started.error().description, "No sound server is running");
    EXPECT_FALSE(rig.engine.isRunning());
    EXPECT_EQ(rig.logged("Sound server not reachable"), 1U);

    startServer();
    EXPECT_EQ(rig.logged("Sound server is there"), 1U);
    expectADictationWorks();
    EXPECT_EQ(rig.log.printed().size(), 2U);
}

TEST_P(PulseAudioFaultsOn, whenTheServerDiesIdle_itIsFoundAndSaidOnce_andReconnectedWhenItReturns) {
    startServer();
    const auto killed = Time::now();
    server.kill();
    ASSERT_TRUE(
        eventually([this] { return rig.connection.status().state != SoundServerStatus::State::ready; }));
    EXPECT_LT(Time::now() - killed, kFoundWithin);
    ASSERT_TRUE(eventually([this] { return rig.logged("Sound server lost") == 1; }));
    EXPECT_FALSE(rig.engine.start().ok());
    startServer();
    expectADictationWorks();
    EXPECT_EQ(rig.logged("Sound server lost"), 1U);
    EXPECT_EQ(rig.logged("Sound server is back"), 1U);
}

TEST_P(PulseAudioFaultsOn, whenTheServerDiesWhileRecording_whatWasSpokenBeforeIsDelivered) {
    startServer();
    record();
    speak(*mike, words(4800));
    const auto killed = Time::now();
    server.kill();
    ASSERT_TRUE(eventually([this] { return !rig.engine.isRunning(); }));
    EXPECT_LT(Time::now() - killed, kFoundWithin);
    EXPECT_TRUE(listener.heard(words(4800)));
    const auto heard = listener.samples().size();
    rig.engine.stop();
    startServer();
    EXPECT_EQ(listener.samples().size(), heard);
    EXPECT_EQ(rig.logged("Sound server lost"), 1U);
    EXPECT_EQ(rig.logged("Sound server is back"), 1U);
    expectADictationWorks();
}

TEST_P(PulseAudioFaultsOn, whenTheServerDiesWhileOpenedAhead_theMicrophoneIsClosed) {
    startServer();
    rig.engine.openAhead();
    server.kill();
    ASSERT_TRUE(eventually([this] { return rig.logged("Sound server lost") == 1; }));
    EXPECT_FALSE(rig.engine.start().ok());
    startServer();
    expectADictationWorks();
}

TEST_P(PulseAudioFaultsOn, whenTheDeviceGoesWhileRecording_theRecordingGoesOnWithTheOther) {
    startServer();
    auto& other = server.plugIn("other", "Other Mike");
    record();
    speak(*mike, words(4800));
    server.unplug("mike");
    ASSERT_TRUE(rig.waitForDefault("other"));
    ASSERT_TRUE(rig.engine.isRunning());
    expectToHearAtLast(other, words(4800, 1));
    EXPECT_TRUE(listener.heard(words(4800)));
    mike = &other;
    expectADictationWorks();
}

TEST_P(PulseAudioFaultsOn,
       whenTheOnlyDeviceGoesWhileRecording_theRecordingEnds_ratherThanHearTheLoudspeakers) {
    startServer();
    record();
    speak(*mike, words(4800));
    server.unplug("mike");
    ASSERT_TRUE(eventually([this] { return !rig.engine.isRunning(); }));
    EXPECT_TRUE(listener.heard(words(4800)));
    ASSERT_TRUE(eventually([this] { return rig.logged("Microphone lost") == 1; }));
    mike = &server.plugIn("mike", "Mike");
    server.setDefaultSource("mike");
    ASSERT_TRUE(rig.waitForDefault("mike"));
    expectADictationWorks();
}

TEST_P(PulseAudioFaultsOn, whenTheDefaultChangesWhileRecording_theNewDefaultIsHeard) {
    startServer();
    auto& other = server.plugIn("other", "Other Mike");
    record();
    speak(*mike, words(4800));
    server.setDefaultSource("other");
    ASSERT_TRUE(rig.waitForDefault("other"));
    expectToHearAtLast(other, words(4800, 1));
    EXPECT_TRUE(listener.heard(words(4800)));
    EXPECT_TRUE(rig.engine.isRunning());
}

TEST_P(PulseAudioFaultsOn, whenOtherClientsComeAndGoMeanwhile_theDefaultThatReturnsIsKnown) {
    startServer();
    std::atomic<bool> ending = false;
    std::thread others([&] {
        while (!ending) {
            SoundServerView(server.address()).defaultSource();
        }
    });
    for (int turn = 0; turn < 5; ++turn) {
        server.unplug("mike");
        server.plugIn("mike", "Mike");
        EXPECT_TRUE(rig.waitForDefault("mike")) << "in turn " << turn;
    }
    ending = true;
    others.join();
}

TEST_P(PulseAudioFaultsOn, whenADeviceAppearsWhileRecording_theRecordingGoesOnUndisturbed) {
    startServer();
    record();
    mike->speak(words(48000));
    server.plugIn("blue", "Studio Bluetooth Mic");
    mike->waitUntilSilent();
    ASSERT_TRUE(listener.waitForMore(std::size_t{10} * 1024));
    EXPECT_TRUE(rig.engine.isRunning());
    EXPECT_TRUE(listener.heard(words(4800)));
}

TEST_P(PulseAudioFaultsOn, whenTheServerFreezesWhileRecording_nothingBlocks_andItWorksWhenItGoesOn) {
    startServer();
    record();
    server.freeze();
    const auto begun = Time::now();
    rig.engine.flush();
    rig.engine.stop();
    rig.engine.removeTap();
    rig.engine.openAhead();
    rig.engine.closeAhead();
    EXPECT_TRUE(rig.engine.start().ok());
    rig.engine.stop();
    EXPECT_EQ(rig.names(), std::vector<std::string>{"Mike"});
    EXPECT_LT(Time::now() - begun, kAtOnce);
    server.thaw();
    expectADictationWorks();
}

TEST_P(PulseAudioFaultsOn, whenTheServerFreezesWhileRecording_itIsSaidOnce) {
    startServer();
    record();
    server.freeze();
    EXPECT_TRUE(eventually([this] { return rig.logged("No sound comes from the microphone") == 1; }));
    server.thaw();
    rig.engine.stop();
    expectADictationWorks();
    EXPECT_EQ(rig.logged("No sound comes from the microphone"), 1U);
}

TEST_P(PulseAudioFaultsOn, whenOpenedAndClosedInHaste_theMicrophoneEndsUpClosed) {
    startServer();
    rig.engine.installTap(1024, listener.tap());
    for (int turn = 0; turn < 100; ++turn) {
        rig.engine.openAhead();
        ASSERT_TRUE(rig.engine.start().ok());
        rig.engine.stop();
        rig.engine.openAhead();
        rig.engine.closeAhead();
    }
    EXPECT_FALSE(rig.engine.isRunning());
    EXPECT_TRUE(eventually([this] { return server.control({"list", "short", "source-outputs"}).empty(); }));
    expectADictationWorks();
}

INSTANTIATE_TEST_SUITE_P(Servers, PulseAudioFaultsOn,
                         testing::Values(SoundServer::Kind::pulseAudio, SoundServer::Kind::pipeWire),
                         [](const auto& kind) { return nameOf(kind.param); });

TEST(PulseAudioFaults, whenTheServerAcceptsAndNeverAnswers_nothingBlocks_andStartSaysSo) {
    const BrokenServer server(BrokenServer::Manner::stalls);
    auto begun = Time::now();
    auto rig = std::make_unique<SoundRig>(server.address());
    ASSERT_TRUE(eventually([&] { return server.accepted() == 1; }));
    rig->engine.openAhead();
    [[maybe_unused]] const auto early = rig->engine.start();
    rig->engine.stop();
    EXPECT_TRUE(rig->devices.devices().empty());
    EXPECT_LT(Time::now() - begun, kAtOnce);

    ASSERT_TRUE(eventually([&] { return rig->logged("Sound server does not answer") == 1; }));
    begun = Time::now();
    const auto started = rig->engine.start();
    ASSERT_FALSE(started.ok());
    EXPECT_EQ(started.error().description, "The sound server does not answer");
    EXPECT_FALSE(rig->engine.isRunning());
    const auto& access = rig->devices;
    EXPECT_EQ(access.microphoneStatus(), MicrophoneStatus::unknown);
    rig.reset();
    EXPECT_LT(Time::now() - begun, kAtOnce);
}

TEST(PulseAudioFaults, whenTheServerHangsUpAgainAndAgain_itIsAskedEverLessOften) {
    const BrokenServer server(BrokenServer::Manner::hangsUp);
    const SoundRig rig(server.address());
    // 0.05, 0.1, 0.2, 0.4 and 0.8 seconds of waiting lie before the sixth.
    const auto begun = Time::now();
    ASSERT_TRUE(eventually([&] { return server.accepted() == 6; }));
    EXPECT_GT(Time::now() - begun, std::chrono::milliseconds(1500));
    EXPECT_EQ(rig.logged("Sound server"), 1U);
}

TEST(PulseAudioFaults, whenTheServerRefusesTheProgram_startSaysSo_andAccessIsDenied) {
    SoundServer server(SoundServer::Kind::pulseAudio);
    server.start();
    server.plugIn("mike", "Mike");
    const auto cookie = server.folder() + "/another-cookie";
    std::ofstream(cookie, std::ios::binary) << std::string(256, 'x');
    // Over a local socket the server knows the user; over the network only the cookie speaks for a client.
    const auto port = std::to_string(freePort());
    server.control({"load-module", "module-native-protocol-tcp", "listen=127.0.0.1", "port=" + port,
                    "auth-cookie=" + cookie});
    const SoundRig rig("tcp:127.0.0.1:" + port);
    ASSERT_TRUE(
        eventually([&] { return rig.connection.status().state == SoundServerStatus::State::refused; }));
    const auto& access = rig.devices;
    EXPECT_EQ(access.microphoneStatus(), MicrophoneStatus::denied);
    EXPECT_FALSE(access.microphoneExplanation().empty());
    EXPECT_EQ(rig.logged("Sound server refuses this program"), 1U);
}

} // namespace
