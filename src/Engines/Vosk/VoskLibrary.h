// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Host/RecognitionError.h"

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

/// The Vosk library, loaded while the program runs. Any thread; a recogniser is for one at a time.
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

} // namespace tovik
