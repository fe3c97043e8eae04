// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Apertium/WarmPipeline.h"
#include "Platform/Lifetime.h"
#include "Platform/MainQueue.h"
#include "Platform/TranslationService.h"

#include <map>
#include <memory>
#include <optional>
#include <string>

namespace tovik {

/// Translates on this machine with Apertium, as far as its pairs are installed: at once, offline, and
/// roughly.
class ApertiumService : public TranslationService {
public:
    static constexpr auto kDebianModes = "/usr/share/apertium/modes";

    explicit ApertiumService(MainQueue& queue, std::string modesFolder = kDebianModes);

    [[nodiscard]] std::optional<std::string> whyUnavailable() const override;
    void availability(const TranslationPair& pair,
                      std::function<void(const Result<TranslationAvailability>&)> completion) override;
    [[nodiscard]] std::optional<Subscription> offerSessions(const TranslationPair& pair,
                                                            SessionHandler handler) override;

private:
    [[nodiscard]] std::string pathOf(const std::string& mode) const;
    [[nodiscard]] std::optional<std::string> installedMode(const TranslationPair& pair) const;
    [[nodiscard]] Result<WarmPipeline*> pipelineFor(const TranslationPair& pair);
    void translate(const TranslationPair& pair, const std::string& text, WarmPipeline::Completion completion);

    MainQueue& queue_;
    const std::string modesFolder_;
    std::map<std::string, std::unique_ptr<WarmPipeline>> pipelines_;
    Lifetime lifetime_;
};

} // namespace tovik
