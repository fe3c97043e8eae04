// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/SystemLog.h"
#include "Platform/TextTranslator.h"

namespace tovik {

/// Stands where no translation service is: says so, and leaves every text as it is.
class MissingTranslator : public TextTranslator {
public:
    MissingTranslator(MainQueue& queue, SystemLog& log) : queue_(queue), log_(log) {}

    [[nodiscard]] std::optional<std::string> whyUnavailable() const override {
        return "This version has no translator yet: transcripts are pasted as they were spoken.";
    }

    void translate(const std::string& /*text*/,
                   std::function<void(const std::optional<TranslationResult>&)> completion) override {
        log_.logLine(
            "[TovikVoice] Translation is not available in this version; the text is pasted as spoken");
        queue_.async([completion = std::move(completion)] { completion(std::nullopt); });
    }

private:
    MainQueue& queue_;
    SystemLog& log_;
};

} // namespace tovik
