// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Apertium/WarmPipeline.h"
#include "Platform/MainQueue.h"
#include "Platform/Subscription.h"
#include "Platform/TranslationService.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// What a mode for the pair may be called; the first that is installed is the best. Empty for languages that
/// are not in the program's table.
[[nodiscard]] std::vector<std::string> modeNames(const TranslationPair& pair);

/// The Debian package that brings the pair; nothing when there is none.
[[nodiscard]] std::optional<std::string> packageOfPair(const TranslationPair& pair);

/// The stages that a mode file of Apertium names, each told to answer whenever a text is over instead of when
/// its input ends, and not to mark the words that it does not know. Fails on what is not a plain pipeline of
/// programs.
[[nodiscard]] Result<std::vector<Stage>> stagesOfMode(std::string_view content);

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
