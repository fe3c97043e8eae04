// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Host/ModelEngine.h"
#include "Platform/SpeechService.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tovik {

/// Recognizes United States English with PocketSphinx, the embedded engine.
class PocketSphinxService : public SpeechService {
public:
    /// The model of Debian's package pocketsphinx-en-us.
    static constexpr auto packageModel = "/usr/share/pocketsphinx/model/en-us";

    /// model: a folder laid out as that of the package: en-us/, en-us.lm.bin, cmudict-en-us.dict.
    explicit PocketSphinxService(SystemLog& log, const std::filesystem::path& model = packageModel);
    ~PocketSphinxService() override { engine_->end(); }
    PocketSphinxService(const PocketSphinxService&) = delete;
    PocketSphinxService& operator=(const PocketSphinxService&) = delete;

    /// Recognizers serve "en-US" and what means the same: "en", "en_US.UTF-8".
    [[nodiscard]] std::shared_ptr<SpeechRecognizer>
    makeRecognizer(const std::string& localeIdentifier) override;
    [[nodiscard]] std::string currentLocaleIdentifier() const override;
    void prepare(const std::vector<std::string>& contextualStrings) override;

    /// As ModelEngine.
    [[nodiscard]] std::optional<std::string> whyUnavailable() { return engine_->whyUnavailable(); }
    [[nodiscard]] bool waitUntilReady(Seconds atMost) { return engine_->waitUntilReady(atMost); }

private:
    const std::shared_ptr<ModelEngine> engine_;
};

} // namespace tovik
