// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/TranslationService.h"

#include <utility>

namespace tovik {

/// Stands where nothing translates, and says so.
class MissingTranslationService : public TranslationService {
public:
    explicit MissingTranslationService(MainQueue& queue) : queue_(queue) {}

    [[nodiscard]] std::optional<std::string> whyUnavailable() const override {
        return "This version has no translator yet: transcripts are pasted as they were spoken.";
    }
    [[nodiscard]] bool needsVisibleWindow() const override { return false; }

    void availability(const TranslationPair& /*pair*/,
                      std::function<void(const Result<TranslationAvailability>&)> completion) override {
        queue_.async(
            [completion = std::move(completion)] { completion(TranslationAvailability::unsupported); });
    }
    [[nodiscard]] Subscription offerSessions(const TranslationPair& /*pair*/,
                                             SessionHandler /*handler*/) override {
        return {};
    }

private:
    MainQueue& queue_;
};

} // namespace tovik
