// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Host/Utterance.h"

#include <utility>

namespace tovik {

Utterance::Utterance(std::shared_ptr<RecognitionRequest> request, RecognitionHandler handler)
    : request_(std::move(request)),
      handler_(std::move(handler)) {}

void Utterance::reportPartial(const std::string& text) {
    deliver(RecognitionResult{text, false}, std::nullopt, false);
}

void Utterance::answer(const std::string& text) {
    deliver(RecognitionResult{text, true}, std::nullopt, true);
}

void Utterance::answer(const Error& error) {
    deliver(std::nullopt, error, true);
}

void Utterance::deliver(const std::optional<RecognitionResult>& result, const std::optional<Error>& error,
                        bool endsIt) {
    const std::lock_guard lock(mutex_);
    if (!handler_) {
        return;
    }
    if (endsIt) {
        std::exchange(handler_, nullptr)(result, error);
    } else {
        handler_(result, error);
    }
}

} // namespace tovik
