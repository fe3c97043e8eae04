// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

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

} // namespace tovik
