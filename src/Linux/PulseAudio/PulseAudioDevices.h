// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/PulseAudio/SoundDirectory.h"
#include "Platform/AudioEngine.h"
#include "Platform/Authorization.h"
#include "Platform/MainQueue.h"
#include "Platform/Subscription.h"
#include "Platform/UserDefaults.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tovik {

/// The sound server's devices. A microphone's unique id is its source's name. Monitors of outputs are listed
/// where the user default "platform.listMonitors" is true or there is no other microphone.
///
/// Empty until the server has answered for the first time; what it lists then is told as connected, and as
/// disconnected when the server is lost. A default that is a monitor is given also where monitors are not
/// listed.
///
/// Destroy it on the main thread, before the connection.
class PulseAudioDevices : public CaptureDevices, public AudioHardware {
public:
    PulseAudioDevices(PulseAudioConnection& connection, MainQueue& queue, const UserDefaults& defaults);
    ~PulseAudioDevices() override;

    [[nodiscard]] std::vector<CaptureDevice> devices() const override;
    [[nodiscard]] std::optional<std::string> defaultDeviceId() const override;
    [[nodiscard]] Subscription onConnected(std::function<void(const CaptureDevice&)> handler) override;
    [[nodiscard]] Subscription onDisconnected(std::function<void(const CaptureDevice&)> handler) override;

    [[nodiscard]] Result<std::vector<std::uint32_t>> deviceIds() const override;
    [[nodiscard]] std::optional<std::string> deviceName(std::uint32_t id) const override;

    /// Whether the server lets this program hear a microphone, as far as is known now: restricted without a
    /// microphone, denied when the server turned the program or its last recording away, unknown while no
    /// server has answered. Any thread; asks nothing of the user: outside a sandbox no desktop does.
    [[nodiscard]] MicrophoneStatus microphoneStatus() const;
    /// What is wrong and how to mend it, in a sentence for the user; empty when nothing is.
    [[nodiscard]] std::string microphoneExplanation() const;

    /// The listing behind all this, for the other parts of this adapter. Any thread.
    [[nodiscard]] std::shared_ptr<SoundDirectory> directory() const { return directory_; }

private:
    /// By the server's number: a device that was away meanwhile has a new one.
    using Known = std::map<std::uint32_t, CaptureDevice>;

    [[nodiscard]] std::vector<SoundSource> microphones() const;
    void tellWhatChanged();

    PulseAudioConnection& connection_;
    const UserDefaults& defaults_;
    /// Shared with whoever is just telling: a handler may destroy these devices.
    std::shared_ptr<Observers<CaptureDevice>> connected_ = std::make_shared<Observers<CaptureDevice>>();
    std::shared_ptr<Observers<CaptureDevice>> disconnected_ = std::make_shared<Observers<CaptureDevice>>();
    Known known_;
    std::shared_ptr<SoundDirectory> directory_;
    Lifetime lifetime_;
};

} // namespace tovik
