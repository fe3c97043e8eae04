// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tovik {

/// A microphone that the user can choose. Two records are the same device when their ids are equal,
/// whatever the names say: a device may be renamed while it is chosen.
struct AudioDevice {
    std::string id;
    /// As the sound system shows it to people.
    std::string name;
    bool isAvailable = true;

    bool operator==(const AudioDevice& other) const { return id == other.id; }
};

/// Is told what microphones there are and which one is chosen. Called on the main queue, never from within
/// the operation that changed something.
class AudioDeviceSelectionDelegate {
public:
    virtual ~AudioDeviceSelectionDelegate() = default;

    /// The whole list, in the sound system's order; also when nothing has changed.
    virtual void availableDevicesChanged(const std::vector<AudioDevice>& devices) = 0;
    /// Nothing when no device is known.
    virtual void currentDeviceChanged(const std::optional<AudioDevice>& device) = 0;
};

} // namespace tovik
