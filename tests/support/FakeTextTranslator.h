// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/TranslationService.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tovik::test {

/// Answers when the test says so.
class FakeTextTranslator : public TextTranslator {
public:
    [[nodiscard]] std::optional<std::string> whyUnavailable() const override { return missing; }

    void translate(const std::string& text,
                   std::function<void(const std::optional<TranslationResult>&)> completion) override {
        texts.push_back(text);
        completions_.push_back(std::move(completion));
    }

    /// Answers the oldest open request.
    void answer(const std::optional<TranslationResult>& result) {
        const auto completion = std::move(completions_.front());
        completions_.erase(completions_.begin());
        completion(result);
    }

    void answerNewest(const std::optional<TranslationResult>& result) {
        const auto completion = std::move(completions_.back());
        completions_.pop_back();
        completion(result);
    }

    /// Set: there is no translation service, for this reason.
    std::optional<std::string> missing;
    /// What was to be translated, in order.
    std::vector<std::string> texts;

private:
    std::vector<std::function<void(const std::optional<TranslationResult>&)>> completions_;
};

} // namespace tovik::test
