// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Host/UtteranceDecoder.h"
#include "Engines/Host/VoiceEvidence.h"
#include "Engines/Vosk/VoskLibrary.h"

#include <memory>
#include <string>
#include <vector>

namespace tovik {

/// Decodes with the Vosk library.
///
/// A phrase list would restrict what it hears to the phrases. So the words to favour are looked for among the
/// likeliest readings instead, and the likeliest that has some of them may win over one that has fewer.
///
/// Silence and noise it makes no words of, but of a hum it makes one or two now and then.
class VoskDecoder : public UtteranceDecoder {
public:
    /// Loads the first of the libraries that is there, and the model, which takes from half a second to a
    /// minute. The error is a sentence for the user; over some broken models the library ends the process,
    /// and from others it never comes back.
    [[nodiscard]] static Result<std::unique_ptr<UtteranceDecoder>>
    load(const std::vector<std::string>& libraries, const std::string& modelFolder);
    ~VoskDecoder() override;

    Result<void> prepare(const std::vector<std::string>& contextualStrings) override;
    Result<void> begin(const std::vector<std::string>& contextualStrings) override;
    Result<void> accept(std::span<const std::int16_t> samples) override;
    [[nodiscard]] std::string hypothesis() override;
    [[nodiscard]] Result<std::string> finish() override;

private:
    VoskDecoder(std::unique_ptr<const VoskLibrary> library, VoskModel* model);

    [[nodiscard]] bool canHear();
    void freeRecognizer();
    void append(const char* answer);
    [[nodiscard]] bool isHum(const std::string& text) const;

    const std::unique_ptr<const VoskLibrary> library_;
    VoskModel* const model_;
    VoskRecognizer* recognizer_ = nullptr;
    /// In lower case, as the library writes.
    std::vector<std::string> favoured_;
    std::string text_;
    VoiceEvidence voice_;
};

} // namespace tovik
