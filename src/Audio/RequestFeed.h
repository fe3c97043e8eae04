// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/AudioEngine.h"

#include <memory>

namespace tovik {

class RecognitionRequest;

/// Takes the microphone's buffers to a request. A request has one sample rate for good, while the microphone
/// may come to another one than it promised: a headset that takes over in the very moment of a start. Such
/// sound is converted. For one thread; neither blocks nor allocates.
class RequestFeed {
public:
    explicit RequestFeed(std::shared_ptr<RecognitionRequest> request);

    void append(const AudioBuffer& buffer);

private:
    void convert(const AudioBuffer& buffer);

    std::shared_ptr<RecognitionRequest> request_;
    /// Where the next converted sample lies, in frames of the coming buffer; -1 is the last frame before it.
    double position_ = 0;
    float lastFrame_ = 0;
};

} // namespace tovik
