// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/CaptureDevices.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tovik::test {

/// Microphones that a test plugs in and out.
class FakeCaptureDevices : public CaptureDevices {
public:
    FakeCaptureDevices();

    [[nodiscard]] std::vector<CaptureDevice> devices() const override { return devices_; }
    [[nodiscard]] std::optional<std::string> defaultDeviceId() const override { return defaultId_; }
    [[nodiscard]] Subscription onConnected(std::function<void(const CaptureDevice&)> handler) override;
    [[nodiscard]] Subscription onDisconnected(std::function<void(const CaptureDevice&)> handler) override;

    /// Changes what is listed without telling anybody.
    void setDevices(std::vector<CaptureDevice> devices) { devices_ = std::move(devices); }
    void setDefaultDeviceId(std::optional<std::string> id) { defaultId_ = std::move(id); }

    /// Tells the observers; what is listed stays as it is.
    void notifyConnected(const CaptureDevice& device);
    void notifyDisconnected(const CaptureDevice& device);
    /// Lists the device at the end, then tells.
    void connect(const CaptureDevice& device);
    /// Takes the device off the list, and away as default, then tells.
    void disconnect(const CaptureDevice& device);

    [[nodiscard]] std::size_t observerCount() const;

private:
    using Handlers = std::map<std::uint64_t, std::function<void(const CaptureDevice&)>>;

    static Subscription add(const std::shared_ptr<Handlers>& handlers,
                            std::function<void(const CaptureDevice&)> handler);
    static void tell(const std::shared_ptr<Handlers>& handlers, const CaptureDevice& device);

    std::vector<CaptureDevice> devices_;
    std::optional<std::string> defaultId_;
    std::shared_ptr<Handlers> connected_;
    std::shared_ptr<Handlers> disconnected_;
};

} // namespace tovik::test
