// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/StatusItem.h"

namespace tovik {

/// The status item's picture while no recording runs.
[[nodiscard]] inline StatusImage statusBarAppIcon(const std::string& accessibilityDescription) {
    return {.kind = StatusImage::Kind::applicationIcon,
            .symbolName = "AppIcon",
            .accessibilityDescription = accessibilityDescription,
            .pointSize = 18};
}

/// The status item's picture during a recording.
[[nodiscard]] inline StatusImage statusBarRecordingSymbol() {
    return {.kind = StatusImage::Kind::symbol,
            .symbolName = "waveform",
            .accessibilityDescription = "Recording",
            .pointSize = 13};
}

} // namespace tovik
