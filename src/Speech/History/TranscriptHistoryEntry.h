// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Clock.h"

#include <string>

namespace tovik {

/// A delivered transcript. It has no identity of its own: its place in the history is its address.
struct TranscriptHistoryEntry {
    /// Trimmed and not empty when it was added by this program.
    std::string text;
    Date createdAt;

    bool operator==(const TranscriptHistoryEntry&) const = default;
};

} // namespace tovik
