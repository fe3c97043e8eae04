// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"
#include "Platform/Subscription.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tovik {

/// A microphone as the sound system lists it.
struct CaptureDevice {
    std::string uniqueId;
    std::string localizedName;

    bool operator==(const CaptureDevice&) const = default;
};

/// The microphones of this machine. Main thread; answers come from what the sound system last told, at once.
class CaptureDevices {
public:
    virtual ~CaptureDevices() = default;

    /// In the sound system's order.
    [[nodiscard]] virtual std::vector<CaptureDevice> devices() const = 0;
    [[nodiscard]] virtual std::optional<std::string> defaultDeviceId() const = 0;

    [[nodiscard]] virtual Subscription onConnected(std::function<void(const CaptureDevice&)> handler) = 0;
    [[nodiscard]] virtual Subscription onDisconnected(std::function<void(const CaptureDevice&)> handler) = 0;
};

/// Every device of the sound system, inputs and outputs alike. Main thread; answers at once.
class AudioHardware {
public:
    virtual ~AudioHardware() = default;

    /// Empty while there is no sound system. An error carries the sound system's numeric status.
    [[nodiscard]] virtual Result<std::vector<std::uint32_t>> deviceIds() const = 0;
    /// Nothing when the device is gone or has no name.
    [[nodiscard]] virtual std::optional<std::string> deviceName(std::uint32_t id) const = 0;
};

} // namespace tovik
