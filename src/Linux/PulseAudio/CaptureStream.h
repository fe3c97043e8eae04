// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/PulseAudio/CaptureRelay.h"
#include "Linux/PulseAudio/PulseHandles.h"

#include <chrono>
#include <functional>
#include <string>

namespace tovik {

/// One opening of the server's default source. Sound thread only.
class CaptureStream {
public:
    struct Handlers {
        /// Called at most once, with the client library's error number, when the server ends the stream or
        /// does not open it. The stream may be destroyed in that call's wake, not within it.
        std::function<void(int)> ended;
        /// The server lets it hear.
        std::function<void()> opened;
        /// It hears another source than before.
        std::function<void()> moved;
    };

    CaptureStream(pa_context& context, const pa_sample_spec& spec, const pa_channel_map& channels,
                  CaptureRelay& relay, CaptureRelay::Session session, Handlers handlers);

    /// The name of the source that it hears now; the server may move it. Empty before the server has told.
    [[nodiscard]] std::string source() const;

    /// When the server last sent anything, or else when it was asked to.
    [[nodiscard]] std::chrono::steady_clock::time_point heardAt() const { return heardAt_; }

private:
    void stateChanged();
    void readAvailable();

    CaptureRelay& relay_;
    const CaptureRelay::Session session_;
    const std::size_t channelCount_;
    Handlers handlers_;
    pulse::StreamHandle stream_;
    std::chrono::steady_clock::time_point heardAt_ = std::chrono::steady_clock::now();
};

} // namespace tovik
