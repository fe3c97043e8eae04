// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/PulseAudio/CaptureRelay.h"
#include "Linux/PulseAudio/PulseHandles.h"

#include <functional>

namespace tovik {

/// One opening of the server's default source. Sound thread only.
class CaptureStream {
public:
    /// Ended is called at most once, with the client library's error number, when the server ends the stream
    /// or does not open it; the stream may be destroyed in that call's wake, not within it.
    CaptureStream(pa_context& context, const pa_sample_spec& spec, const pa_channel_map& channels,
                  CaptureRelay& relay, CaptureRelay::Session session, std::function<void(int)> ended);

private:
    void stateChanged();
    void readAvailable();

    CaptureRelay& relay_;
    const CaptureRelay::Session session_;
    const std::size_t channelCount_;
    std::function<void(int)> ended_;
    pulse::StreamHandle stream_;
};

} // namespace tovik
