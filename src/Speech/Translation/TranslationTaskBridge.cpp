// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Translation/TranslationTaskBridge.h"

#include <utility>

namespace tovik {

TranslationTaskBridge::TranslationTaskBridge(std::string text, TranslationPair configuration,
                                             Continuation continuation)
    : text_(std::move(text)),
      configuration_(std::move(configuration)),
      continuation_(std::move(continuation)) {}

void TranslationTaskBridge::receive(const std::shared_ptr<TranslationSession>& session) {
    if (hasResumed_) {
        return;
    }
    sessions_.push_back(session);
    session->translate(
        text_, [self = shared_from_this()](const Result<std::string>& outcome) { self->resume(outcome); });
}

void TranslationTaskBridge::resume(const Result<std::string>& outcome) {
    if (std::exchange(hasResumed_, true)) {
        return;
    }
    const auto continuation = std::exchange(continuation_, nullptr);
    // A session may hold the callback in which this runs, and that one this bridge.
    const auto sessions = std::exchange(sessions_, {});
    continuation(outcome);
}

} // namespace tovik
