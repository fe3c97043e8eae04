// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/PocketSphinx/CepstralMean.h"
#include "Engines/PocketSphinx/ContextualVocabulary.h"
#include "Engines/PocketSphinx/FrontEnd.h"
#include "Engines/PocketSphinx/LibraryCall.h"
#include "Engines/PocketSphinx/ModelFiles.h"
#include "Engines/Host/VoiceEvidence.h"
#include "Engines/Host/UtteranceDecoder.h"

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

    Result<void> prepare(const std::vector<std::string>& contextualStrings) override;
    Result<void> begin(const std::vector<std::string>& contextualStrings) override;
    Result<void> accept(std::span<const std::int16_t> samples) override;
    [[nodiscard]] std::string hypothesis() override;
    [[nodiscard]] Result<std::string> finish() override;

private:
    PocketSphinxDecoder(ModelFiles files, ps_decoder_s* decoder, std::unique_ptr<FrontEnd> frontEnd);

    /// The library's decoder on the model; an error for every model that is unusable.
    [[nodiscard]] static Result<ps_decoder_s*> loadLibrary(const ModelFiles& files);
    /// Starts over with a decoder that was taught no terms.
    Result<void> forgetTerms();

    /// Runs a call of the library; after one that failed, none any more.
    template <typename Callable>
    [[nodiscard]] Result<void> call(Callable callable);
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

    const ModelFiles files_;
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
    bool unusable_ = false;
};

} // namespace tovik
