// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/TranslationService.h"

#include <functional>
#include <utility>

namespace tovik {

/// The server where the user named one, else what is installed on this machine. Decided at each call, so that
/// a change of the settings counts at once.
class TranslationChoice : public TranslationService {
public:
    TranslationChoice(TranslationService& server, TranslationService& local,
                      std::function<bool()> isServerChosen)
        : server_(server),
          local_(local),
          isServerChosen_(std::move(isServerChosen)) {}

    [[nodiscard]] std::optional<std::string> whyUnavailable() const override {
        return chosen().whyUnavailable();
    }
    void availability(const TranslationPair& pair,
                      std::function<void(const Result<TranslationAvailability>&)> completion) override {
        chosen().availability(pair, std::move(completion));
    }
    [[nodiscard]] std::optional<Subscription> offerSessions(const TranslationPair& pair,
                                                            SessionHandler handler) override {
        return chosen().offerSessions(pair, std::move(handler));
    }

private:
    [[nodiscard]] TranslationService& chosen() const { return isServerChosen_() ? server_ : local_; }

    TranslationService& server_;
    TranslationService& local_;
    std::function<bool()> isServerChosen_;
};

} // namespace tovik
