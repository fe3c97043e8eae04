// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/SpeechService.h"
#include "Audio/RecognitionRequest.h"

#include <memory>
#include <mutex>
#include <string>

namespace tovik {

/// One request for recognition and the one who waits for its text. Sees to it that exactly one call of the
/// handler ends it, and that none comes afterwards. Any thread.
class Utterance {
public:
    Utterance(std::shared_ptr<RecognitionRequest> request, RecognitionHandler handler);

    [[nodiscard]] RecognitionRequest& request() const { return *request_; }
    /// Whether nobody else holds the request any more: then no sound can come, and no end of it either.
    [[nodiscard]] bool requestAbandoned() const { return request_.use_count() == 1; }

    /// Each calls the handler, on this thread; does nothing once the utterance was answered.
    void reportPartial(const std::string& text);
    void answer(const std::string& text);
    void answer(const Error& error);

private:
    void deliver(const std::optional<RecognitionResult>& result, const std::optional<Error>& error,
                 bool endsIt);

    const std::shared_ptr<RecognitionRequest> request_;
    std::mutex mutex_;
    RecognitionHandler handler_;
};

} // namespace tovik
