// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/AudioEngine.h"
#include "Platform/Subscription.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tovik::test {

/// Microphones that a test plugs in and out.
class FakeCaptureDevices : public CaptureDevices {
public:
    [[nodiscard]] std::vector<CaptureDevice> devices() const override { return devices_; }
    [[nodiscard]] std::optional<std::string> defaultDeviceId() const override { return defaultId_; }
    [[nodiscard]] Subscription onConnected(std::function<void(const CaptureDevice&)> handler) override {
        return connected_.add(std::move(handler));
    }
    [[nodiscard]] Subscription onDisconnected(std::function<void(const CaptureDevice&)> handler) override {
        return disconnected_.add(std::move(handler));
    }

    /// Changes what is listed without telling anybody.
    void setDevices(std::vector<CaptureDevice> devices) { devices_ = std::move(devices); }
    void setDefaultDeviceId(std::optional<std::string> id) { defaultId_ = std::move(id); }

    /// Tells the observers; what is listed stays as it is.
    void notifyConnected(const CaptureDevice& device) { connected_.tell(device); }
    void notifyDisconnected(const CaptureDevice& device) { disconnected_.tell(device); }
    /// Lists the device at the end, then tells.
    void connect(const CaptureDevice& device) {
        devices_.push_back(device);
        notifyConnected(device);
    }
    /// Takes the device off the list, and away as default, then tells.
    void disconnect(const CaptureDevice& device) {
        std::erase(devices_, device);
        if (defaultId_ == device.uniqueId) {
            defaultId_.reset();
        }
        notifyDisconnected(device);
    }

    [[nodiscard]] bool isObserved() const { return !connected_.isEmpty() || !disconnected_.isEmpty(); }

private:
    std::vector<CaptureDevice> devices_;
    std::optional<std::string> defaultId_;
    Observers<CaptureDevice> connected_;
    Observers<CaptureDevice> disconnected_;
};

/// A sound system of which a test says what it lists.
class FakeAudioHardware : public AudioHardware {
public:
    [[nodiscard]] Result<std::vector<std::uint32_t>> deviceIds() const override {
        ++scans_;
        if (error_) {
            return *error_;
        }
        std::vector<std::uint32_t> ids;
        for (std::uint32_t id = 1; id <= names_.size(); ++id) {
            ids.push_back(id);
        }
        return ids;
    }
    [[nodiscard]] std::optional<std::string> deviceName(std::uint32_t id) const override {
        return id == 0 || id > names_.size() ? std::nullopt : names_[id - 1];
    }

    /// A device without a name is one whose name cannot be read. Ids count from 1 in the given order.
    void setDevices(std::vector<std::optional<std::string>> names) { names_ = std::move(names); }
    /// From now on the list cannot be read.
    void failWith(Error error) { error_ = std::move(error); }

    /// How often the list was asked for.
    [[nodiscard]] int scans() const { return scans_; }

private:
    std::vector<std::optional<std::string>> names_;
    std::optional<Error> error_;
    mutable int scans_ = 0;
};

} // namespace tovik::test
