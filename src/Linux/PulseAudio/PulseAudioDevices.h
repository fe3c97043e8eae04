// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/PulseAudio/SoundDirectory.h"
#include "Platform/AudioHardware.h"
#include "Platform/CaptureDevices.h"
#include "Platform/Lifetime.h"
#include "Platform/MainQueue.h"
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

    /// The listing behind all this, for the other parts of this adapter. Any thread.
    [[nodiscard]] std::shared_ptr<SoundDirectory> directory() const { return directory_; }

private:
    using Handlers = std::map<std::uint64_t, std::function<void(const CaptureDevice&)>>;
    /// By the server's number: a device that was away meanwhile has a new one.
    using Known = std::map<std::uint32_t, CaptureDevice>;

    [[nodiscard]] std::vector<SoundSource> microphones() const;
    static Subscription add(const std::shared_ptr<Handlers>& handlers,
                            std::function<void(const CaptureDevice&)> handler);
    static void tell(const std::shared_ptr<Handlers>& handlers, const CaptureDevice& device);
    void tellWhatChanged();

    PulseAudioConnection& connection_;
    const UserDefaults& defaults_;
    std::shared_ptr<Handlers> connected_ = std::make_shared<Handlers>();
    std::shared_ptr<Handlers> disconnected_ = std::make_shared<Handlers>();
    Known known_;
    std::shared_ptr<SoundDirectory> directory_;
    Lifetime lifetime_;
};

} // namespace tovik
