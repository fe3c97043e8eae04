// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/AudioHardware.h"

#include <utility>

namespace tovik::test {

/// A sound system of which a test says what it lists.
class FakeAudioHardware : public AudioHardware {
public:
    [[nodiscard]] Result<std::vector<std::uint32_t>> deviceIds() const override;
    [[nodiscard]] std::optional<std::string> deviceName(std::uint32_t id) const override;

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
