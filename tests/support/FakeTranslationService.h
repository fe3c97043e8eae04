// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/Subscription.h"
#include "Platform/TranslationService.h"

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tovik::test {

/// Translates as its test says: at once from a table, or when the test hands over sessions and answers.
class FakeTranslationService : public TranslationService {
public:
    explicit FakeTranslationService(MainQueue& queue) : queue_(queue) {}

    [[nodiscard]] std::optional<std::string> whyUnavailable() const override { return reason; }

    void availability(const TranslationPair& pair,
                      std::function<void(const Result<TranslationAvailability>&)> completion) override {
        queue_.async(lifetime_.guard([this, pair, completion = std::move(completion)] {
            asked.push_back(pair);
            const auto found = answers.find(pair);
            completion(found == answers.end() ? TranslationAvailability::unsupported : found->second);
        }));
    }

    [[nodiscard]] std::optional<Subscription> offerSessions(const TranslationPair& pair,
                                                            SessionHandler handler) override {
        if (!windowIsVisible) {
            return std::nullopt;
        }
        const auto number = nextOffer_++;
        offers_[number] = std::move(handler);
        offered.push_back(pair);
        if (phrases) {
            queue_.async(lifetime_.guard([this, number] { handOver(number); }));
        }
        return Subscription([this, number] { offers_.erase(number); });
    }

    /// Hands every open offer a session, as often as it is called.
    void handOverSessions() {
        for (const auto& [number, handler] : std::map(offers_)) {
            handler(session());
        }
    }

    /// Answers the oldest text that waits for it.
    void answer(const Result<std::string>& outcome) {
        const auto completion = std::move(waiting_.front());
        waiting_.erase(waiting_.begin());
        completion(outcome);
    }

    [[nodiscard]] std::size_t openOffers() const { return offers_.size(); }

    std::optional<std::string> reason;
    /// Its sessions need a visible window, and whether there is one.
    bool windowIsVisible = true;
    /// Pairs that are not here are unsupported.
    std::map<TranslationPair, Result<TranslationAvailability>> answers;
    /// If set, sessions come by themselves and translate by it; other texts come back as they are.
    std::optional<std::map<std::string, std::string>> phrases;
    std::vector<TranslationPair> asked;
    std::vector<TranslationPair> offered;
    std::vector<std::string> texts;

private:
    [[nodiscard]] TranslationSession session() {
        return [this](const std::string& text, std::function<void(const Result<std::string>&)> completion) {
            take(text, std::move(completion));
        };
    }

    void handOver(int number) {
        if (const auto found = offers_.find(number); found != offers_.end()) {
            const auto handler = found->second;
            handler(session());
        }
    }

    void take(const std::string& text, std::function<void(const Result<std::string>&)> completion) {
        texts.push_back(text);
        if (!phrases) {
            waiting_.push_back(std::move(completion));
            return;
        }
        const auto found = phrases->find(text);
        queue_.async(lifetime_.guard([outcome = found == phrases->end() ? text : found->second,
                                      completion = std::move(completion)] { completion(outcome); }));
    }

    MainQueue& queue_;
    int nextOffer_ = 0;
    std::map<int, SessionHandler> offers_;
    std::vector<std::function<void(const Result<std::string>&)>> waiting_;
    Lifetime lifetime_;
};

} // namespace tovik::test
