// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/SpeechService.h"
#include "Audio/RecognitionRequest.h"

#include <memory>
#include <utility>

namespace tovik {

/// A task whose recognizer needs nothing but the request to know the end of the speech. It keeps neither of
/// them.
class RequestTask : public RecognitionTask {
public:
    explicit RequestTask(std::weak_ptr<RecognitionRequest> request) : request_(std::move(request)) {}

    void finish() override {
        if (const auto request = request_.lock()) {
            request->endAudio();
        }
    }

private:
    const std::weak_ptr<RecognitionRequest> request_;
};

} // namespace tovik
