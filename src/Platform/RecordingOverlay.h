// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Clock.h"

namespace tovik {

/// The pill that shows the microphone's level and the elapsed time while a recording runs. Main thread.
class RecordingOverlay {
public:
    virtual ~RecordingOverlay() = default;

    virtual void show(Date startedAt) = 0;
    virtual void hide() = 0;
    /// A short beat: the recording has become hands-free.
    virtual void tovik() = 0;
    /// The newest level, 0...1. Dropped while the overlay is hidden.
    virtual void setLevel(float level) = 0;
};

} // namespace tovik
