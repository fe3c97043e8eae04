// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/PocketSphinx/CepstralMean.h"
#include "Linux/PocketSphinx/FrontEnd.h"
#include "Linux/PocketSphinx/LibraryCall.h"
#include "Linux/PocketSphinx/ModelFiles.h"
#include "Linux/PocketSphinx/UtteranceDecoder.h"
#include "Linux/PocketSphinx/VoiceEvidence.h"

#include <memory>

struct ps_decoder_s;

namespace tovik {

/// Decodes with the PocketSphinx library. Once the library has given up on something, every further call
/// fails, and a new decoder is needed.
class PocketSphinxDecoder : public UtteranceDecoder {
public:
    /// Loads the model, which takes half a second. An unusable model is an error, whatever is wrong with it.
    [[nodiscard]] static Result<std::unique_ptr<UtteranceDecoder>> load(const ModelFiles& files);
    ~PocketSphinxDecoder() override;

    Result<void> begin(const std::vector<std::string>& contextualStrings) override;
    Result<void> accept(std::span<const std::int16_t> samples) override;
    [[nodiscard]] std::string hypothesis() override;
    [[nodiscard]] Result<std::string> finish() override;

private:
    PocketSphinxDecoder(ps_decoder_s* decoder, std::unique_ptr<FrontEnd> frontEnd);

    /// Runs a call of the library; after one that failed, none any more.
    template <typename Callable>
    [[nodiscard]] Result<void> call(Callable callable);
    Result<void> search(std::span<const Cepstrum> frames);

    ps_decoder_s* const decoder_;
    const std::unique_ptr<FrontEnd> frontEnd_;
    VoiceEvidence voice_;
    CepstralMean mean_;
    std::vector<Cepstrum> heard_;
    std::vector<Cepstrum> ready_;
    std::size_t searched_ = 0;
    Cepstrum last_{};
    bool unusable_ = false;
};

} // namespace tovik
