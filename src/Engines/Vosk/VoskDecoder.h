// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Host/DecoderHost.h"
#include "Engines/Host/RecognitionError.h"
#include "Engines/Host/VoiceEvidence.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

// The library's own objects; nothing of it is there when this is built.
struct VoskModel;
struct VoskRecognizer;

namespace tovik {

/// Why there is no speech with the library, and where to get it, in a sentence for the user.
[[nodiscard]] inline Error voskUnusable(const std::string& why) {
    return recognitionError(RecognitionCode::noModel,
                            "The Vosk library is not usable: " + why +
                                ". Put libvosk.so of https://github.com/alphacep/vosk-api/releases into "
                                "~/.local/share/tovik-record or /usr/local/lib.");
}

/// The Vosk library, loaded while the program runs. Any thread; a recognizer is for one at a time.
///
/// Versions differ in what they have: what not all of them do is null in some.
class VoskLibrary {
public:
    /// Loads the first of these that is there. The error says where to get one.
    [[nodiscard]] static Result<std::unique_ptr<const VoskLibrary>>
    load(const std::vector<std::string>& candidates);

    /// It stays loaded: nobody knows whether it lets itself be taken down.
    ~VoskLibrary() = default;
    VoskLibrary(const VoskLibrary&) = delete;
    VoskLibrary& operator=(const VoskLibrary&) = delete;

    void (*setLogLevel)(int level) = nullptr;
    VoskModel* (*newModel)(const char* path) = nullptr;
    void (*freeModel)(VoskModel* model) = nullptr;
    VoskRecognizer* (*newRecognizer)(VoskModel* model, float sampleRate) = nullptr;
    void (*freeRecognizer)(VoskRecognizer* recognizer) = nullptr;
    /// May be null.
    void (*setMaxAlternatives)(VoskRecognizer* recognizer, int most) = nullptr;
    /// 1 when a pause was heard and the result up to there should be fetched, 0 when not, -1 when it failed.
    int (*acceptSamples)(VoskRecognizer* recognizer, const short* samples, int count) = nullptr;
    /// Each answer is JSON, and good until the next call.
    const char* (*result)(VoskRecognizer* recognizer) = nullptr;
    const char* (*partialResult)(VoskRecognizer* recognizer) = nullptr;
    const char* (*finalResult)(VoskRecognizer* recognizer) = nullptr;

private:
    explicit VoskLibrary(void* handle) : handle_(handle) {}
    /// The name of a function that must be there and is not; empty when all are.
    [[nodiscard]] std::string findFunctions();

    void* const handle_;
};

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
