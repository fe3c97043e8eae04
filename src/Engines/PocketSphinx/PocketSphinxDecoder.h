// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Host/DecoderHost.h"
#include "Engines/Host/VoiceEvidence.h"
#include "Engines/PocketSphinx/ContextualVocabulary.h"
#include "Engines/PocketSphinx/FrontEnd.h"

#include <memory>

struct ps_decoder_s;

namespace tovik {

/// Decodes with the PocketSphinx library, which ends the process over many a broken model.
class PocketSphinxDecoder : public UtteranceDecoder {
public:
    /// Loads the model in a folder laid out as that of Debian's package, which takes half a second. The error
    /// is a sentence for the user.
    [[nodiscard]] static Result<std::unique_ptr<UtteranceDecoder>> load(const std::string& folder);
    ~PocketSphinxDecoder() override;

    Result<void> prepare(const std::vector<std::string>& contextualStrings) override;
    Result<void> begin(const std::vector<std::string>& contextualStrings) override;
    Result<void> accept(std::span<const std::int16_t> samples) override;
    [[nodiscard]] std::string hypothesis() override;
    [[nodiscard]] Result<std::string> finish() override;

private:
    PocketSphinxDecoder(std::string folder, ps_decoder_s* decoder, std::unique_ptr<FrontEnd> frontEnd);

    [[nodiscard]] static Result<ps_decoder_s*> loadLibrary(const std::string& folder);
    /// Starts over with a decoder that was taught no terms.
    Result<void> forgetTerms();

    /// Searches what is ready, from the start of the utterance if need be.
    Result<void> searchReady();
    Result<void> search(std::span<const Cepstrum> frames);
    Result<void> searchPadding();
    /// Whether the newest words are followed by quiet.
    [[nodiscard]] bool isPausing();
    /// Keeps the words so far and searches on from here.
    Result<void> searchAfresh();
    /// The words since searchAfresh(), as the user spells them.
    [[nodiscard]] std::string newWords();

    const std::string folder_;
    ps_decoder_s* decoder_;
    const std::unique_ptr<FrontEnd> frontEnd_;
    ContextualVocabulary vocabulary_;
    VoiceEvidence voice_;
    CepstralMean mean_;
    std::vector<Cepstrum> heard_;
    CepstralMean::Output ready_;
    std::size_t searched_ = 0;
    std::string earlierWords_;
    Cepstrum last_{};
};

} // namespace tovik
