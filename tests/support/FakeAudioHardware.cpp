// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/FakeAudioHardware.h"

namespace tovik::test {

Result<std::vector<std::uint32_t>> FakeAudioHardware::deviceIds() const {
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

std::optional<std::string> FakeAudioHardware::deviceName(std::uint32_t id) const {
    return id == 0 || id > names_.size() ? std::nullopt : names_[id - 1];
}

} // namespace tovik::test
