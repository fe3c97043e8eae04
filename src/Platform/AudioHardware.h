// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tovik {

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
