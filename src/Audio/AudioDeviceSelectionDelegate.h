// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Audio/AudioDevice.h"

#include <optional>
#include <vector>

namespace tovik {

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
